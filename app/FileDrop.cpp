#include "app/FileDrop.h"

#include "system/Mutex.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QSysInfo>
#include <algorithm>
#include <utility>

namespace zarnet {

namespace {

/// An item whose location the toolkit has delivered with the drop.
class DeliveredItem : public ItemProvider {
 public:
  explicit DeliveredItem(std::optional<std::filesystem::path> file) : location(std::move(file)) {}
  void loadFile(std::function<void(std::optional<std::filesystem::path>)> done) override { done(location); }

 private:
  const std::optional<std::filesystem::path> location;
};

/// What the completions of one drop share.
struct Collection {
  Mutex lock;
  std::vector<std::pair<std::size_t, std::filesystem::path>> files GUARDED_BY(lock);
  std::size_t outstanding GUARDED_BY(lock) = 0;

  /// Notes one completion; true for the last one.
  bool complete(std::size_t position, std::optional<std::filesystem::path> file) {
    const MutexLock held(lock);
    if (file) files.emplace_back(position, std::move(*file));
    return --outstanding == 0;
  }

  std::vector<std::filesystem::path> inOrder() {
    const MutexLock held(lock);
    std::stable_sort(files.begin(), files.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<std::filesystem::path> sorted;
    for (auto& [position, file] : files)
      sorted.push_back(std::move(file));
    return sorted;
  }
};

std::vector<QByteArray> addresses(const QMimeData& data) {
  std::vector<QByteArray> found;
  for (const QByteArray& line : data.data(QStringLiteral("text/uri-list")).split('\n')) {
    const QByteArray address = line.trimmed();
    if (!address.isEmpty() && !address.startsWith('#')) found.push_back(address);
  }
  return found;
}

}  // namespace

std::optional<std::filesystem::path> fileFromAddress(const QByteArray& address) {
  if (!address.toLower().startsWith("file:")) return std::nullopt;
  QByteArray rest = address.mid(5);
  if (rest.startsWith("//")) {
    const qsizetype slash = rest.indexOf('/', 2);
    if (slash < 0) return std::nullopt;
    const QByteArray host = rest.mid(2, slash - 2).toLower();
    if (!host.isEmpty() && host != "localhost" && host != QSysInfo::machineHostName().toUtf8().toLower()) {
      return std::nullopt;
    }
    rest = rest.mid(slash);
  }
  const QByteArray bytes = QByteArray::fromPercentEncoding(rest);
  if (!bytes.startsWith('/') || bytes.contains('\0')) return std::nullopt;
  return std::filesystem::path(bytes.toStdString());
}

std::vector<std::shared_ptr<ItemProvider>> droppedItems(const QMimeData& data) {
  std::vector<std::shared_ptr<ItemProvider>> items;
  for (const QByteArray& address : addresses(data))
    items.push_back(std::make_shared<DeliveredItem>(fileFromAddress(address)));
  return items;
}

bool carriesFiles(const QMimeData& data) {
  return std::ranges::any_of(addresses(data),
                             [](const QByteArray& address) { return fileFromAddress(address).has_value(); });
}

void loadFiles(const std::vector<std::shared_ptr<ItemProvider>>& providers,
               std::function<void(std::vector<std::filesystem::path>)> done) {
  const auto collection = std::make_shared<Collection>();
  {
    const MutexLock held(collection->lock);
    collection->outstanding = providers.size();
  }
  for (std::size_t position = 0; position < providers.size(); ++position) {
    providers[position]->loadFile([collection, position, done](std::optional<std::filesystem::path> file) {
      if (!collection->complete(position, std::move(file))) return;
      QMetaObject::invokeMethod(
          qApp, [collection, done] { done(collection->inOrder()); }, Qt::QueuedConnection);
    });
  }
}

}  // namespace zarnet
