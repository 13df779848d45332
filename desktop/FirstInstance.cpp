#include "desktop/FirstInstance.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <utility>

namespace zarnet {

namespace {
const QString name = QStringLiteral("org.zarnet.Zarnet");
const QString path = QStringLiteral("/org/zarnet/Zarnet");
const QString interface = QStringLiteral("org.freedesktop.Application");
}  // namespace

FirstInstance::FirstInstance(const QDBusConnection& sessionBus) : bus(sessionBus) {
  if (!bus.isConnected()) return;
  // The object comes before the name, so that nobody finds a name that answers nothing.
  bus.registerObject(path, this, QDBusConnection::ExportAllSlots);
  const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply = bus.interface()->registerService(
      name, QDBusConnectionInterface::DontQueueService, QDBusConnectionInterface::DontAllowReplacement);
  first = !reply.isValid() || reply.value() == QDBusConnectionInterface::ServiceRegistered;
}

FirstInstance::~FirstInstance() {
  release();
}

bool FirstInstance::ask(const std::vector<std::filesystem::path>& files, const QVariantMap& platform) const {
  const bool opens = !files.empty();
  QDBusMessage call = QDBusMessage::createMethodCall(
      name, path, interface, opens ? QStringLiteral("Open") : QStringLiteral("Activate"));
  if (opens) {
    QStringList addresses;
    for (const std::filesystem::path& file : files) {
      const QByteArray escaped = QByteArray::fromStdString(file.native()).toPercentEncoding("/");
      addresses << QStringLiteral("file://") + QString::fromLatin1(escaped);
    }
    call << addresses;
  }
  call << platform;
  return bus.call(call, QDBus::Block, answerLimit).type() == QDBusMessage::ReplyMessage;
}

void FirstInstance::serve(std::function<void(const QVariantMap&)> activate,
                          std::function<bool(const QStringList&, const QVariantMap&)> open) {
  activated = std::move(activate);
  opened = std::move(open);
}

void FirstInstance::release() {
  if (!bus.isConnected()) return;
  if (std::exchange(first, false)) bus.interface()->unregisterService(name);
  bus.unregisterObject(path);
}

void FirstInstance::Activate(const QVariantMap& platform) {
  if (activated) return activated(platform);
  sendErrorReply(QDBusError::Failed, QStringLiteral("Zarnet is not ready."));
}

void FirstInstance::Open(const QStringList& addresses, const QVariantMap& platform) {
  if (opened && opened(addresses, platform)) return;
  sendErrorReply(QDBusError::Failed, QStringLiteral("Zarnet takes no files now."));
}

void FirstInstance::ActivateAction(const QString&, const QVariantList&, const QVariantMap&) {
  sendErrorReply(QDBusError::InvalidArgs, QStringLiteral("Zarnet has no such action."));
}

}  // namespace zarnet
