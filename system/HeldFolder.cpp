#include "system/HeldFolder.h"

#include "system/FileSystem.h"
#include "system/PlatformError.h"
#include "system/UUID.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string>
#include <utility>

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/vfs.h>

namespace zarnet {

namespace {

constexpr int attempts = 100;

/// The file systems of one machine. On those of a network a lock on a folder may be this machine's alone.
bool locksAreSeenByAll(int folder) {
  constexpr std::int64_t xfs = 0x58465342;
  constexpr std::int64_t zfs = 0x2FC12FC1;
  constexpr std::int64_t bcachefs = 0xCA451A4E;
  constexpr std::array<std::int64_t, 9> local = {TMPFS_MAGIC,
                                                 EXT4_SUPER_MAGIC,
                                                 BTRFS_SUPER_MAGIC,
                                                 OVERLAYFS_SUPER_MAGIC,
                                                 F2FS_SUPER_MAGIC,
                                                 RAMFS_MAGIC,
                                                 xfs,
                                                 zfs,
                                                 bcachefs};
  struct statfs system {};
  return fstatfs(folder, &system) == 0 && std::ranges::count(local, std::int64_t{system.f_type}) > 0;
}

Descriptor openFolder(const std::filesystem::path& path) {
  int folder = -1;
  do {
    folder = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
  } while (folder < 0 && errno == EINTR);
  return Descriptor(folder);
}

/// Whether the path still names the folder that is open.
bool names(const std::filesystem::path& path, const Descriptor& folder) {
  struct stat named {};
  struct stat opened {};
  return lstat(path.c_str(), &named) == 0 && fstat(folder.get(), &opened) == 0 &&
         named.st_dev == opened.st_dev && named.st_ino == opened.st_ino;
}

enum class Lock { taken, held, unknown };

Lock lock(const Descriptor& folder) {
  if (flock(folder.get(), LOCK_EX | LOCK_NB) == 0) return Lock::taken;
  return errno == EWOULDBLOCK ? Lock::held : Lock::unknown;
}

/// The new folder, locked. None when another start's search for abandoned folders came in between, or its
/// parents vanished, unless this is the last attempt; raises when it cannot be created at all.
std::optional<Descriptor> createdAndLocked(const std::filesystem::path& path, mode_t mode, bool last) {
  createFolders(path.parent_path());
  if (mkdir(path.c_str(), mode) != 0) {
    if (errno == ENOENT && !last) return std::nullopt;
    throw systemError(path.parent_path(), "takes no new folder", errno);
  }
  Descriptor folder = openFolder(path);
  if (folder.get() < 0 || lock(folder) == Lock::held || !names(path, folder)) return std::nullopt;
  return folder;
}

}  // namespace

HeldFolder::HeldFolder(Descriptor descriptor, std::filesystem::path name)
    : folder(std::move(descriptor)), location(std::move(name)) {}

HeldFolder HeldFolder::create(const std::filesystem::path& parent, std::string_view prefix, mode_t mode) {
  for (int attempt = 1; attempt <= attempts; ++attempt) {
    std::filesystem::path path = parent / (std::string(prefix) + newUUID());
    if (std::optional<Descriptor> folder = createdAndLocked(path, mode, attempt == attempts))
      return {std::move(*folder), std::move(path)};
  }
  throw systemError(parent, "takes no new folder", EBUSY);
}

std::optional<HeldFolder> HeldFolder::takeOver(const std::filesystem::path& path) {
  Descriptor folder = openFolder(path);
  struct stat information {};
  if (folder.get() < 0 || fstat(folder.get(), &information) != 0 || information.st_uid != geteuid() ||
      !locksAreSeenByAll(folder.get()) || lock(folder) != Lock::taken || !names(path, folder))
    return std::nullopt;
  return HeldFolder(std::move(folder), path);
}

void HeldFolder::renew() {
  for (int attempt = 1; attempt <= attempts && !names(location, folder); ++attempt) {
    folder = openFolder(location);
    if (folder.get() >= 0) {
      lock(folder);
    } else if (std::optional<Descriptor> created = createdAndLocked(location, 0700, attempt == attempts)) {
      folder = std::move(*created);
    }
  }
}

bool isNamedAsHeld(const std::filesystem::path& path, std::string_view prefix) {
  const std::string name = path.filename();
  return name.starts_with(prefix) && isUUID(std::string_view(name).substr(prefix.size()));
}

void removeAbandonedFolders(const std::filesystem::path& parent, std::string_view prefix) {
  std::error_code error;
  for (std::filesystem::directory_iterator entry(parent, error), end; !error && entry != end;
       entry.increment(error)) {
    if (!isNamedAsHeld(entry->path(), prefix)) continue;
    if (const std::optional<HeldFolder> folder = HeldFolder::takeOver(entry->path())) {
      std::error_code ignored;
      std::filesystem::remove_all(folder->path(), ignored);
    }
  }
}

}  // namespace zarnet
