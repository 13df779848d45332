// fake-portal ADDRESS SCHEME: a desktop portal on the bus at that address which knows one setting, the colour
// scheme. Its own method "Set" changes it. Says "ready" once it can be asked.

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <cstdio>

namespace {

const QString place = QStringLiteral("/org/freedesktop/portal/desktop");
const QStringList setting = {QStringLiteral("org.freedesktop.appearance"), QStringLiteral("color-scheme")};

class Settings : public QDBusVirtualObject {
 public:
  explicit Settings(uint initial) : scheme(initial) {}

  QString introspect(const QString&) const override { return {}; }

  bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
    if (message.member() == "Set") {
      scheme = message.arguments().value(0).toUInt();
      for (const QStringList& changed :
           {QStringList{setting[0], "contrast"}, setting, {"another", setting[1]}}) {
        auto signal = QDBusMessage::createSignal(place, "org.freedesktop.portal.Settings", "SettingChanged");
        const uint value = changed == setting ? scheme : 3 - scheme;
        bus.send(signal << changed[0] << changed[1] << QVariant::fromValue(QDBusVariant(value)));
      }
      return true;
    }
    if (message.member() != "Read" || message.arguments() != QList<QVariant>{setting[0], setting[1]})
      return false;
    const QDBusVariant once{QVariant(scheme)};
    return bus.send(message.createReply(QVariant::fromValue(QDBusVariant(QVariant::fromValue(once)))));
  }

 private:
  uint scheme;
};

}  // namespace

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  QDBusConnection bus = QDBusConnection::connectToBus(QString::fromUtf8(argv[1]), "portal");
  Settings settings(QString::fromUtf8(argv[2]).toUInt());
  if (!bus.registerVirtualObject(place, &settings) || !bus.registerService("org.freedesktop.portal.Desktop"))
    return 1;
  std::puts("ready");
  std::fflush(stdout);
  return QCoreApplication::exec();
}
