// fake-portal ADDRESS SCHEME: a desktop portal on the bus at that address which knows one setting, the colour
// scheme. Its own method "Set" changes it. Says "ready" once it can be asked.

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <cstdio>
#include <string>

namespace {

const QString place = QStringLiteral("/org/freedesktop/portal/desktop");
const QString group = QStringLiteral("org.freedesktop.appearance");
const QString key = QStringLiteral("color-scheme");

class Settings : public QDBusVirtualObject {
 public:
  explicit Settings(uint initial) : scheme(initial) {}

  QString introspect(const QString&) const override { return {}; }

  bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
    const QList<QVariant> arguments = message.arguments();
    if (message.member() == "Set") {
      scheme = arguments.value(0).toUInt();
      announce(bus, group, QStringLiteral("contrast"), 3 - scheme);
      announce(bus, group, key, scheme);
      announce(bus, QStringLiteral("another.group"), key, 3 - scheme);
      return true;
    }
    if (message.member() != "Read" || arguments != QList<QVariant>{group, key}) return false;
    const QDBusVariant once{QVariant(scheme)};
    return bus.send(message.createReply(QVariant::fromValue(QDBusVariant(QVariant::fromValue(once)))));
  }

 private:
  static void announce(const QDBusConnection& bus, const QString& changedGroup, const QString& changedKey,
                       uint value) {
    QDBusMessage signal =
        QDBusMessage::createSignal(place, "org.freedesktop.portal.Settings", "SettingChanged");
    bus.send(signal << changedGroup << changedKey << QVariant::fromValue(QDBusVariant(value)));
  }

  uint scheme;
};

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  QDBusConnection bus = QDBusConnection::connectToBus(QString::fromUtf8(argv[1]), "portal");
  Settings settings(static_cast<uint>(std::stoul(argv[2])));
  if (!bus.registerVirtualObject(place, &settings) || !bus.registerService("org.freedesktop.portal.Desktop"))
    return 1;
  std::puts("ready");
  std::fflush(stdout);
  return QCoreApplication::exec();
}
