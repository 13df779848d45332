#include "desktop/Appearance.h"

#include "desktop/Palette.h"
#include "desktop/PortalSetting.h"

namespace zarnet {

void setApplicationAppearance(std::optional<ColorScheme> chosen) {
  auto* application = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
  if (application == nullptr) return;
  auto* appearance = application->findChild<Appearance*>(QString(), Qt::FindDirectChildrenOnly);
  if (appearance == nullptr) appearance = new Appearance(*application);
  appearance->choose(chosen);
}

Appearance::Appearance(QGuiApplication& application, const QDBusConnection& sessionBus)
    : QObject(&application),
      bus(sessionBus),
      platformScheme(tokens(QGuiApplication::palette()).dark ? ColorScheme::dark : ColorScheme::light) {}

void Appearance::choose(std::optional<ColorScheme> scheme) {
  chosen = scheme;
  if (!chosen && !following) follow();
  apply();
}

void Appearance::follow() {
  following = true;
  new PortalSetting(
      QStringLiteral("org.freedesktop.appearance"), QStringLiteral("color-scheme"), bus,
      [this](const QVariant& value) {
        take(value);
        apply();
      },
      firstAnswerLimit, this);
}

void Appearance::take(const QVariant& value) {
  const uint number = value.typeId() == QMetaType::UInt ? value.toUInt() : 0;
  portalScheme = number == 1   ? std::optional(ColorScheme::dark)
                 : number == 2 ? std::optional(ColorScheme::light)
                               : std::nullopt;
}

void Appearance::apply() {
  const ColorScheme scheme = chosen.value_or(portalScheme.value_or(platformScheme));
  const QPalette palette = scheme == ColorScheme::dark ? darkPalette() : lightPalette();
  if (QGuiApplication::palette() != palette) QGuiApplication::setPalette(palette);
}

}  // namespace zarnet
