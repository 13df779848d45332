#include "tools/prepare/Results.h"

#include "system/FileHandle.h"
#include "system/FileSystem.h"
#include "system/PlatformError.h"

#include <algorithm>
#include <set>
#include <system_error>

namespace zarnet {

namespace {

constexpr std::size_t longestRecord = std::size_t{1} << 16;  // bytes; a record has a few hundred
constexpr std::size_t copiedBytes = std::size_t{1} << 20;    // at a time

std::filesystem::path sibling(const std::filesystem::path& file, const std::string& ending) {
  return file.parent_path() / (file.stem() += ending);
}

bool holdsOneOf(const std::filesystem::path& folder, const std::vector<std::filesystem::path>& files) {
  return std::ranges::any_of(files, [&](const std::filesystem::path& file) {
    std::error_code ignored;
    return std::filesystem::equivalent(folder, folderOf(absolutePath(file)), ignored);
  });
}

/// Unlike the standard library's way, it tells a full disk from any other failure.
void copyFile(const std::filesystem::path& from, const std::filesystem::path& to) {
  FileHandle source = FileHandle::openForReading(from);
  FileHandle target = FileHandle::createForWriting(to);
  std::vector<char> buffer(copiedBytes);
  while (const std::size_t bytes = source.read(buffer.data(), buffer.size()))
    target.write(buffer.data(), bytes);
  target.close();
}

}  // namespace

Results::Results(const std::filesystem::path& location)
    : original(location.parent_path() / "original.wav"),
      encoded(location),
      decoded(sibling(location, ".caf")),
      checkRecord(sibling(location, "-check.json")) {}

std::string Results::checkRecordText() const {
  FileHandle file = FileHandle::openForReading(checkRecord);
  std::string text(longestRecord, '\0');
  text.resize(file.read(text.data(), text.size()));
  return text;
}

std::vector<std::filesystem::path> resultFolders(const std::filesystem::path& output,
                                                 const std::vector<std::filesystem::path>& files) {
  std::vector<std::filesystem::path> folders;
  std::set<std::filesystem::path> taken;
  for (const std::filesystem::path& file : files) {
    const std::filesystem::path stem = file.stem();
    // "..wav" and "...wav" would name the output folder itself and the one above it.
    const std::filesystem::path name = stem == "." || stem == ".." ? file.filename() : stem;
    std::filesystem::path folder = output / name;
    for (int number = 2; taken.contains(folder) || holdsOneOf(folder, files); ++number)
      folder = output / (std::filesystem::path(name) += " " + std::to_string(number));
    taken.insert(folder);
    folders.push_back(folder);
  }
  return folders;
}

void moveAnywhere(const std::filesystem::path& from, const std::filesystem::path& to) {
  std::error_code error;
  std::filesystem::rename(from, to, error);
  if (!error) return;
  if (error != std::errc::cross_device_link) throw systemError(to, "could not be written", error.value());
  std::filesystem::path working = to;
  working += "-working";
  try {
    copyFile(from, working);
    moveFile(working, to);
  } catch (const PlatformError&) {
    removeAll(working);
    throw;
  }
  removeAll(from);
}

}  // namespace zarnet
