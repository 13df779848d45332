#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QVariant>
#include <functional>

namespace zarnet {

/// Follows one setting of the desktop portal over D-Bus: it is read when this object is made, whenever a
/// portal appears, and when it changes. Without a bus or a portal nothing is ever heard. Interface thread.
class PortalSetting : public QObject {
  Q_OBJECT

 public:
  using Receiver = std::function<void(const QVariant& value)>;

  /// `bus` is the session's. `receiver` is called with each value that arrives, for the first time perhaps
  /// from within this constructor, which waits up to `firstAnswerLimit` ms for it (0: not at all); a later
  /// answer is heard then.
  PortalSetting(const QString& group, const QString& key, const QDBusConnection& bus, Receiver receiver,
                int firstAnswerLimit, QObject* parent = nullptr);

 private Q_SLOTS:
  void settingChanged(const QDBusMessage& signal);

 private:
  QDBusMessage reading() const;
  void readLater();
  void take(QVariant value) const;

  const QString group;
  const QString key;
  QDBusConnection bus;
  const Receiver receiver;
};

}  // namespace zarnet
