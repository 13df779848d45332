#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace zarnet {

/// The files of one comparison, as they lie in its conversion folder.
struct Results {
  /// Requires: `encoded` is the encoding's location there.
  explicit Results(const std::filesystem::path& encoded);

  /// The check record as it is written. Raises `PlatformError` when there is none.
  std::string checkRecordText() const;

  std::filesystem::path original, encoded, decoded, checkRecord;
};

/// Where to leave the results of each file: a folder in `output` named after the file without its extension,
/// followed by " 2", " 3", … for another file of that name. Never a folder that holds one of the files
/// itself, which could be replaced. The same arguments give the same names.
std::vector<std::filesystem::path> resultFolders(const std::filesystem::path& output,
                                                 const std::vector<std::filesystem::path>& files);

/// Moves a file, also to another file system; a file there is replaced once the new one is complete. Raises
/// `PlatformError`.
void moveAnywhere(const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace zarnet
