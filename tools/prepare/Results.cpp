#include "tools/prepare/Results.h"

#include "prepare/CheckRecord.h"
#include "prepare/Codecs.h"
#include "system/DisplayText.h"
#include "system/FileHandle.h"
#include "system/FileSystem.h"
#include "system/PlatformError.h"
#include "system/UUID.h"

#include <algorithm>
#include <cerrno>
#include <set>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zarnet {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t copiedBytes = std::size_t{1} << 20;  // at a time
constexpr int attempts = 100;                              // beside other processes with the same place

// What lies beside the places under these names, followed by the set's name and a UUID, is not the user's.
constexpr std::string_view newPrefix = ".zarnet-new-";  // gathered, or just replaced
constexpr std::string_view oldPrefix = ".zarnet-old-";  // out of the way of a set that cannot be exchanged

bool holdsOneOf(const fs::path& place, const SetNames& names, const std::vector<fs::path>& files) {
  return std::ranges::any_of(names.files(), [&](const std::string& name) {
    return std::ranges::any_of(files, [&](const fs::path& file) {
      std::error_code ignored;
      return fs::equivalent(place / name, file, ignored);
    });
  });
}

/// Raises unless the place can be given to a set: nothing is there, or a folder with files of this set only.
void requireSet(const fs::path& place, const SetNames& names) {
  std::error_code error;
  const fs::file_type type = fs::symlink_status(place, error).type();
  if (type == fs::file_type::not_found) return;
  if (type != fs::file_type::directory) throw systemError(place, "could not be replaced", ENOTDIR);
  for (const fs::path& entry : folderEntries(place)) {
    const bool known = std::ranges::count(names.files(), entry.filename().string()) > 0;
    if (!known || fs::symlink_status(entry, error).type() == fs::file_type::directory)
      throw PlatformError(quotedName(place) + " could not be replaced: It holds " + quotedName(entry) +
                          ", which is not of a set of results.");
  }
}

/// Removes the files of a set and, when it is empty then, the folder. Failures are passed over.
void removeSet(const fs::path& folder, const SetNames& names) {
  for (const std::string& name : names.files())
    unlink((folder / name).c_str());
  rmdir(folder.c_str());
}

/// The names in a set whose folder has a reserved name with this prefix; none for any other name.
std::optional<SetNames> reservedSet(const fs::path& path, std::string_view prefix) {
  const std::string name = path.filename();
  for (const std::string_view codec : codecNames) {
    for (const std::int64_t bitrate : acceptedBitrates(codec)) {
      SetNames names(std::string(codec), bitrate);
      if (name.starts_with(prefix) && isNamedAsHeld(path, std::string(prefix) + names.set + "-"))
        return names;
    }
  }
  return std::nullopt;
}

bool isOccupied(int error) {
  return error == ENOTEMPTY || error == EEXIST;
}

/// Mends and removes what killed processes left in a folder of places. Failures are passed over: they show
/// when the place is used.
void clearLeftovers(const fs::path& folder) {
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    const fs::path& path = entry->path();
    if (const auto names = reservedSet(path, oldPrefix)) {
      // An empty place has not got its new set; else this one has been replaced.
      const fs::path place = folder / names->set;
      if (rename(path.c_str(), place.c_str()) != 0 && isOccupied(errno) && fileExists(place / names->encoded))
        removeSet(path, *names);
    } else if (const auto abandoned = reservedSet(path, newPrefix)) {
      if (const auto held = HeldFolder::takeOver(path)) removeSet(path, *abandoned);
    }
  }
}

enum class Replacement { done, repeat };

/// Replaces the set at a place in two steps, for file systems that cannot exchange folders.
Replacement replaceInTwoSteps(const fs::path& stage, const fs::path& place, const SetNames& names) {
  const fs::path old = place.parent_path() / (std::string(oldPrefix) + names.set + "-" + newUUID());
  if (rename(place.c_str(), old.c_str()) != 0) {
    if (errno == ENOENT) return Replacement::repeat;
    throw systemError(place, "could not be replaced", errno);
  }
  const int error = rename(stage.c_str(), place.c_str()) == 0 ? 0 : errno;
  if (error == 0 || isOccupied(error)) {
    removeSet(old, names);
    return error == 0 ? Replacement::done : Replacement::repeat;
  }
  rename(old.c_str(), place.c_str());
  throw systemError(place, "could not be replaced", error);
}

Replacement replace(const fs::path& stage, const fs::path& place, const SetNames& names) {
  // Succeeds where there is nothing or an empty folder.
  if (rename(stage.c_str(), place.c_str()) == 0) return Replacement::done;
  if (!isOccupied(errno)) throw systemError(place, "could not be written", errno);
  if (renameat2(AT_FDCWD, stage.c_str(), AT_FDCWD, place.c_str(), RENAME_EXCHANGE) == 0) {
    removeSet(stage, names);
    return Replacement::done;
  }
  if (errno == ENOENT) return Replacement::repeat;
  if (errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP)
    return replaceInTwoSteps(stage, place, names);
  throw systemError(place, "could not be replaced", errno);
}

}  // namespace

SetNames::SetNames(const std::string& codec, std::int64_t bitrate)
    : set(codec + "-" + std::to_string(bitrate)),
      encoded(set + "." + std::string(encodedExtension(codec))),
      decoded(set + ".caf"),
      record(set + "-check.json") {}

std::vector<fs::path> placesByName(const fs::path& output, const std::vector<fs::path>& files,
                                   const SetNames& names) {
  std::vector<fs::path> places;
  std::set<fs::path> taken;
  for (const fs::path& file : files) {
    const fs::path stem = file.stem();
    // "..wav" and "...wav" would name the output folder itself and the one above it.
    const fs::path name = stem == "." || stem == ".." ? file.filename() : stem;
    fs::path folder = output / name;
    for (int number = 2; taken.contains(folder) || holdsOneOf(folder / names.set, names, files); ++number)
      folder = output / (fs::path(name) += " " + std::to_string(number));
    taken.insert(folder);
    places.push_back(folder / names.set);
  }
  return places;
}

fs::path placeByPath(const fs::path& output, const fs::path& file, const SetNames& names) {
  const fs::path absolute = absolutePath(file);
  std::error_code error;
  const fs::path resolved = fs::canonical(absolute.parent_path(), error);
  const fs::path folder = error ? standardized(absolute.parent_path()) : resolved;
  return output / folder.relative_path() / absolute.filename() / names.set;
}

ResultSet::ResultSet(fs::path location, SetNames naming, const std::vector<fs::path>& sources)
    : place(std::move(location)), names(std::move(naming)) {
  const fs::path folder = place.parent_path();
  clearLeftovers(folder);
  requireSet(place, names);
  if (holdsOneOf(place, names, sources))
    throw PlatformError(quotedName(place) + " could not be replaced: It holds one of the files to prepare.");
  for (fs::path missing = folder; !missing.empty() && !fileExists(missing); missing = missing.parent_path())
    made.push_back(missing);
  stage = HeldFolder::create(folder, std::string(newPrefix) + names.set + "-", 0777);
}

ResultSet::~ResultSet() {
  if (!stage) return;
  removeSet(stage->path(), names);
  for (const fs::path& folder : made)
    rmdir(folder.c_str());
}

void ResultSet::take(const fs::path& file, const std::function<void()>& checkpoint) {
  const fs::path target = stage->path() / file.filename();
  if (rename(file.c_str(), target.c_str()) == 0) return;
  if (errno != EXDEV) throw systemError(file, "could not be moved", errno);
  FileHandle from = FileHandle::openForReading(file);
  FileHandle to = FileHandle::createForWriting(target);
  std::vector<char> buffer(copiedBytes);
  while (const std::size_t bytes = from.read(buffer.data(), buffer.size())) {
    checkpoint();
    to.write(buffer.data(), bytes);
  }
  to.close();
  removeAll(file);
}

void ResultSet::writeRecord(const std::string& text) {
  writeCheckRecord(stage->path() / names.record, text);
}

void ResultSet::publish() {
  for (int attempt = 1; attempt <= attempts; ++attempt) {
    requireSet(place, names);
    if (replace(stage->path(), place, names) == Replacement::done) return stage.reset();
  }
  throw systemError(place, "could not be replaced", EBUSY);
}

}  // namespace zarnet
