#include "desktop/PortalSetting.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <utility>

namespace zarnet {

namespace {

// The settings of the XDG desktop portal, https://flatpak.github.io/xdg-desktop-portal/docs/
constexpr auto service = "org.freedesktop.portal.Desktop";
constexpr auto path = "/org/freedesktop/portal/desktop";
constexpr auto interface = "org.freedesktop.portal.Settings";

}  // namespace

PortalSetting::PortalSetting(const QString& settingGroup, const QString& settingKey,
                             const QDBusConnection& sessionBus, Receiver valueReceiver, int firstAnswerLimit,
                             QObject* parent)
    : QObject(parent),
      group(settingGroup),
      key(settingKey),
      bus(sessionBus),
      receiver(std::move(valueReceiver)) {
  if (!bus.isConnected()) return;
  // Listening comes before reading, so that no change falls between the two.
  bus.connect(service, path, interface, "SettingChanged", this, SLOT(settingChanged(QDBusMessage)));
  auto* portals = new QDBusServiceWatcher(service, bus, QDBusServiceWatcher::WatchForRegistration, this);
  connect(portals, &QDBusServiceWatcher::serviceRegistered, this, &PortalSetting::readLater);
  QDBusMessage answer;
  if (firstAnswerLimit > 0) answer = bus.call(reading(), QDBus::Block, firstAnswerLimit);
  if (answer.type() == QDBusMessage::ReplyMessage) {
    take(answer.arguments().value(0));
  } else {
    readLater();
  }
}

QDBusMessage PortalSetting::reading() const {
  QDBusMessage message = QDBusMessage::createMethodCall(service, path, interface, "Read");
  message << group << key;
  return message;
}

void PortalSetting::readLater() {
  auto* answer = new QDBusPendingCallWatcher(bus.asyncCall(reading()), this);
  connect(answer, &QDBusPendingCallWatcher::finished, this, [this, answer] {
    answer->deleteLater();
    if (!answer->isError()) take(answer->reply().arguments().value(0));
  });
}

void PortalSetting::settingChanged(const QDBusMessage& signal) {
  const QList<QVariant> arguments = signal.arguments();
  if (arguments.value(0) == group && arguments.value(1) == key) take(arguments.value(2));
}

void PortalSetting::take(QVariant value) const {
  // "Read" wraps its value twice.
  while (value.canConvert<QDBusVariant>())
    value = value.value<QDBusVariant>().variant();
  receiver(value);
}

}  // namespace zarnet
