#pragma once

#include <QDBusConnection>
#include <QGuiApplication>
#include <QObject>
#include <QVariant>
#include <optional>

namespace zarnet {

enum class ColorScheme { light, dark };

/// Gives the whole application its light or dark palette; none makes it follow the desktop, from now on and
/// as the desktop changes. Windows hear of it as of any change of the application's palette. Does nothing as
/// long as there is no application object. Interface thread.
void setApplicationAppearance(std::optional<ColorScheme> chosen);

/// What stands behind `setApplicationAppearance`: it belongs to the application object and knows what the
/// desktop wants. That is the colour scheme that the toolkit tells of the desktop's theme, and its changes
/// (from Qt 6.5 on, under the desktops that it knows); else that of the desktop portal, read over D-Bus when
/// it is first needed, when it changes and whenever a portal appears; without a portal, or when it states no
/// preference, the scheme of the platform's own palette at the time this object was made. Interface thread.
class Appearance : public QObject {
  Q_OBJECT

 public:
  /// How long the first reading may hold up the interface thread, so that the first window comes up in the
  /// right colours. A portal that answers later is heard then.
  static constexpr int firstAnswerLimit = 250;  // ms

  /// Becomes a child of the application. `bus` is the session's.
  explicit Appearance(QGuiApplication& application,
                      const QDBusConnection& bus = QDBusConnection::sessionBus());

  void choose(std::optional<ColorScheme> scheme);

 private:
  void follow();
  void take(const QVariant& value);
  void apply();

  QDBusConnection bus;
  const ColorScheme platformScheme;
  std::optional<ColorScheme> chosen;
  std::optional<ColorScheme> portalScheme;
  bool following = false;
};

}  // namespace zarnet
