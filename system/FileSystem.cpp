#include "system/FileSystem.h"

#include "system/PlatformError.h"

#include <cerrno>
#include <cstdlib>
#include <system_error>

#include <stdio.h>

namespace zarnet {

namespace {

std::filesystem::path withoutTrailingSeparators(const std::filesystem::path& path) {
  return path.has_filename() ? path : path.parent_path();
}

}  // namespace

std::filesystem::path temporaryFolder() {
  const char* chosen = std::getenv("TMPDIR");
  return absolutePath(chosen != nullptr && *chosen != '\0' ? chosen : P_tmpdir);
}

void createFolders(const std::filesystem::path& path) {
  std::error_code error;
  std::filesystem::create_directories(path, error);
  if (error) throw systemError(path, "could not be created", error.value());
}

bool fileExists(const std::filesystem::path& path) {
  std::error_code ignored;
  return std::filesystem::exists(path, ignored);
}

void moveFile(const std::filesystem::path& from, const std::filesystem::path& to) {
  if (rename(from.c_str(), to.c_str()) != 0) throw systemError(from, "could not be moved", errno);
}

void removeAll(const std::filesystem::path& path) {
  // Somebody may remove or write something in it meanwhile; then what is left is tried again.
  constexpr int tries = 100;
  std::error_code error;
  for (int i = 0; i < tries; ++i) {
    std::filesystem::remove_all(path, error);
    if (error != std::errc::no_such_file_or_directory && error != std::errc::directory_not_empty) break;
  }
  if (error) throw systemError(path, "could not be removed", error.value());
}

std::vector<std::filesystem::path> folderEntries(const std::filesystem::path& path) {
  std::vector<std::filesystem::path> entries;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(path, error), end; !error && entry != end;
       entry.increment(error))
    entries.push_back(entry->path());
  if (error) throw systemError(path, "could not be listed", error.value());
  return entries;
}

std::filesystem::path absolutePath(const std::filesystem::path& path) {
  std::error_code error;
  const std::filesystem::path absolute = std::filesystem::absolute(path, error);
  return error ? path : absolute;
}

std::filesystem::path folderOf(const std::filesystem::path& path) {
  return withoutTrailingSeparators(path).parent_path();
}

std::filesystem::path standardized(const std::filesystem::path& path) {
  return withoutTrailingSeparators(path.lexically_normal());
}

}  // namespace zarnet
