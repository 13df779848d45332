#pragma once

#include "system/HeldFolder.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace zarnet {

/// How a set of results and its files are named.
struct SetNames {
  /// Requires: a codec and bitrate that `prepare` accepts, for anything that touches a file.
  SetNames(const std::string& codec, std::int64_t bitrate);

  std::array<std::string, 4> files() const { return {original, encoded, decoded, record}; }

  std::string set;  ///< of the folder
  std::string original = "original.wav";
  std::string encoded, decoded, record;
};

/// Where to leave the set of each file: the folder named `set` in a folder in `output` that is named after
/// the file without its extension, followed by " 2", " 3", … for another file of that name, or where one of
/// the files itself would be replaced, whatever name it was given by. The same arguments give the same
/// places.
std::vector<std::filesystem::path> placesByName(const std::filesystem::path& output,
                                                const std::vector<std::filesystem::path>& files,
                                                const SetNames& names);

/// Where to leave the set of a file when equal names must never meet: the folder named `set` in `output`
/// followed by the file's whole path, with the links on the way to it resolved.
std::filesystem::path placeByPath(const std::filesystem::path& output, const std::filesystem::path& file,
                                  const SetNames& names);

/// A new set of results on its way to its place, a folder that holds the files of one set and nothing else.
/// Until `publish` it is gathered in a folder beside its place, under a reserved name; at any moment,
/// whatever ends the process, the place holds the whole old set or the whole new one. (Where the file system
/// cannot exchange two folders, there is a moment with neither, which the next set for a place beside it
/// mends.) What killed processes left beside the place is removed. Several processes may have one place.
class ResultSet {
 public:
  /// Notices what would prevent `publish`: raises `PlatformError` when the folder for the set cannot be made
  /// or written, and when something else than a set of results, or one of `sources`, is at its place.
  ResultSet(std::filesystem::path place, SetNames names, const std::vector<std::filesystem::path>& sources);
  /// Removes what was not published, and the folders made for it.
  ~ResultSet();
  ResultSet(const ResultSet&) = delete;
  ResultSet& operator=(const ResultSet&) = delete;

  /// Moves a file of the set from wherever it is; calls `checkpoint`, which may raise, every now and then.
  void take(const std::filesystem::path& file, const std::function<void()>& checkpoint);
  /// Writes the check record of the set, as `writeCheckRecord` does.
  void writeRecord(const std::string& text);
  /// Puts the set in its place and removes the one that it replaces.
  void publish();

 private:
  const std::filesystem::path place;
  const SetNames names;
  std::vector<std::filesystem::path> made;  ///< folders that were missing, from the innermost
  std::optional<HeldFolder> stage;          ///< none once it is published
};

}  // namespace zarnet
