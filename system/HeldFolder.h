#pragma once

#include "system/Descriptor.h"

#include <filesystem>
#include <optional>
#include <string_view>

#include <sys/types.h>

namespace zarnet {

/// A folder that this process holds, which tells it from one that a dead process left behind: a lock on it
/// (flock) ends with the process, however that ends. The folder itself stays. One thread at a time.
class HeldFolder {
 public:
  /// Creates a folder with a name of its own, `prefix` and a new UUID, in `parent`, with missing parents in
  /// the default mode, and holds it. Raises `PlatformError` when it cannot be created. Where the file system
  /// knows no locks, it is created all the same.
  static HeldFolder create(const std::filesystem::path& parent, std::string_view prefix, mode_t mode = 0700);

  /// Takes over a folder that nobody holds. Nothing when somebody does, when it is no folder (a link to one
  /// is none), belongs to another user, or lies in a file system whose locks other machines may not see.
  static std::optional<HeldFolder> takeOver(const std::filesystem::path& path);

  /// Creates the folder again under its name, for this user alone, when it is gone. Raises `PlatformError`.
  void renew();

  const std::filesystem::path& path() const { return location; }

 private:
  HeldFolder(Descriptor descriptor, std::filesystem::path name);

  Descriptor folder;
  std::filesystem::path location;
};

/// Whether a file is named as `HeldFolder::create` names its folders.
bool isNamedAsHeld(const std::filesystem::path& path, std::string_view prefix);

/// Removes the folders that `create` made in `parent` with this prefix and that `takeOver` takes over now,
/// with all their content. Failures are passed over.
void removeAbandonedFolders(const std::filesystem::path& parent, std::string_view prefix);

}  // namespace zarnet
