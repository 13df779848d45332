#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QObject>
#include <QStringList>
#include <QVariantMap>
#include <filesystem>
#include <functional>
#include <vector>

namespace zarnet {

/// One running application for each session, by the desktop's convention: the first one owns
/// "org.zarnet.Zarnet" on the session bus and serves "org.freedesktop.Application" there
/// (freedesktop.org, Desktop Entry, “D-Bus Activation”); a later one asks it to come
/// to the front or to take files. Interface thread.
class FirstInstance : public QObject, protected QDBusContext {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

 public:
  /// How long a first instance may take to answer.
  static constexpr int answerLimit = 2000;  // ms

  /// Becomes the first instance unless there is one; nobody is told about files or a test that is under way.
  /// Without a bus this one counts as the first.
  explicit FirstInstance(const QDBusConnection& bus = QDBusConnection::sessionBus());
  /// Gives the name back, as `release` does.
  ~FirstInstance() override;

  bool isFirst() const { return first; }

  /// Asks the first instance to import these files, or, when there are none, to come to the front; `platform`
  /// holds what the desktop gave to this start. False when it refuses or does not answer in time.
  bool ask(const std::vector<std::filesystem::path>& files, const QVariantMap& platform) const;

  /// What the first instance is asked, from the event loop. `open` gets file addresses, one for each file,
  /// and returns whether it takes them.
  void serve(std::function<void(const QVariantMap&)> activate,
             std::function<bool(const QStringList&, const QVariantMap&)> open);
  /// Lets another one be the first.
  void release();

 public Q_SLOTS:
  // The interface; called over the bus.
  void Activate(const QVariantMap& platform);
  void Open(const QStringList& addresses, const QVariantMap& platform);
  void ActivateAction(const QString& name, const QVariantList& parameters, const QVariantMap& platform);

 private:
  QDBusConnection bus;
  bool first = true;
  std::function<void(const QVariantMap&)> activated;
  std::function<bool(const QStringList&, const QVariantMap&)> opened;
};

}  // namespace zarnet
