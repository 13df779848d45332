#pragma once

#include <QMimeData>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace zarnet {

/// One dropped item. Its location may have to be loaded, and may arrive on any thread.
class ItemProvider {
 public:
  virtual ~ItemProvider() = default;

  /// Calls `done` exactly once, from any thread, at once or later: with the location of a file, or with none
  /// when the item is no file.
  virtual void loadFile(std::function<void(std::optional<std::filesystem::path>)> done) = 0;

 protected:
  ItemProvider() = default;
  ItemProvider(const ItemProvider&) = default;
  ItemProvider& operator=(const ItemProvider&) = default;
};

/// The items of a drag or a drop in their order, one for each line of its text/uri-list. The exact bytes of a
/// name survive, also where they are no UTF-8.
std::vector<std::shared_ptr<ItemProvider>> droppedItems(const QMimeData& data);

/// The location that a file address names ("file:///music/take%201.flac"): percent-escapes are decoded to
/// bytes. None for anything but a file of this machine.
std::optional<std::filesystem::path> fileFromAddress(const QByteArray& address);

/// Whether there is a file among the items of a drag or a drop.
bool carriesFiles(const QMimeData& data);

/// Loads all items and calls `done` once, on the interface thread, with the files among them in the order
/// given. Never calls it when there is no item. Interface thread.
void loadFiles(const std::vector<std::shared_ptr<ItemProvider>>& providers,
               std::function<void(std::vector<std::filesystem::path>)> done);

}  // namespace zarnet
