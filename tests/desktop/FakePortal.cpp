// fake-portal ADDRESS SCHEME: a desktop portal on the bus at that address which knows one setting, the colour
// scheme. Its own method "Set" changes it. Says "ready" once it can be asked.

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusVariant>
#include <cstdio>

class Settings : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

 public:
  uint scheme = 0;

 public Q_SLOTS:
  // The value lies in a variant in a variant.
  QDBusVariant Read(const QString& space, const QString& key) const {
    const bool known = space == "org.freedesktop.appearance" && key == "color-scheme";
    return QDBusVariant(QVariant::fromValue(QDBusVariant(known ? scheme : 3 - scheme)));
  }
  void Set(uint value) {
    scheme = value;
    Q_EMIT SettingChanged("org.freedesktop.appearance", "contrast", QDBusVariant(3 - value));
    Q_EMIT SettingChanged("org.freedesktop.appearance", "color-scheme", QDBusVariant(value));
    Q_EMIT SettingChanged("another", "color-scheme", QDBusVariant(3 - value));
  }

 Q_SIGNALS:
  void SettingChanged(const QString& space, const QString& key, const QDBusVariant& value);
};

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  auto bus = QDBusConnection::connectToBus(argv[1], "portal");
  Settings settings;
  settings.scheme = QString(argv[2]).toUInt();
  if (!bus.registerObject("/org/freedesktop/portal/desktop", &settings,
                          QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals) ||
      !bus.registerService("org.freedesktop.portal.Desktop"))
    return 1;
  std::puts("ready");
  std::fflush(stdout);
  return QCoreApplication::exec();
}

#include "FakePortal.moc"
