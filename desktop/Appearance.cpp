#include "desktop/Appearance.h"

#include "desktop/Palette.h"
#include "desktop/PortalSetting.h"

#include <QStyleHints>

namespace zarnet {

namespace {

// What the toolkit knows of the desktop's theme.
std::optional<ColorScheme> themeScheme() {
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
  const Qt::ColorScheme scheme = QGuiApplication::styleHints()->colorScheme();
  if (scheme != Qt::ColorScheme::Unknown)
    return scheme == Qt::ColorScheme::Dark ? ColorScheme::dark : ColorScheme::light;
#endif
  return std::nullopt;
}

}  // namespace

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
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
  connect(QGuiApplication::styleHints(), &QStyleHints::colorSchemeChanged, this, &Appearance::apply);
#endif
  if (themeScheme()) return;
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
  const ColorScheme scheme = chosen.value_or(themeScheme().value_or(portalScheme.value_or(platformScheme)));
  const QPalette palette = scheme == ColorScheme::dark ? darkPalette() : lightPalette();
  if (QGuiApplication::palette() != palette) QGuiApplication::setPalette(palette);
}

}  // namespace zarnet
