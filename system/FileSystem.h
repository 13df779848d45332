#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace zarnet {

// Operations on folders and files. Every failure is a `PlatformError` that names the file and the reason.

/// The folder for temporary files: $TMPDIR when it is set and not empty, else the system's.
std::filesystem::path temporaryFolder();

/// Creates a folder with its missing parents, in the default mode; one that exists already is no error.
void createFolders(const std::filesystem::path& path);

/// Whether there is a file or folder of that name. A link counts as what it points to.
bool fileExists(const std::filesystem::path& path);

/// Moves a file to a new name in the same file system, replacing what is there.
void moveFile(const std::filesystem::path& from, const std::filesystem::path& to);

/// Removes a file, or a folder with all its content, links themselves and not what they point to.
/// Nothing there is no error.
void removeAll(const std::filesystem::path& path);

/// The direct entries of a folder as full paths, hidden ones included, in no particular order.
std::vector<std::filesystem::path> folderEntries(const std::filesystem::path& path);

/// A location made absolute by name alone: links and ".." stay. Unchanged when it is empty or the working
/// folder is gone.
std::filesystem::path absolutePath(const std::filesystem::path& path);

/// A location without its last component; trailing separators do not count: "a/b" for "a/b/c" and "a/b/c/".
std::filesystem::path folderOf(const std::filesystem::path& path);

/// A location with "." and ".." resolved by name alone and without trailing separators; symbolic links stay.
/// Absolute when `path` is; an empty path stays empty.
std::filesystem::path standardized(const std::filesystem::path& path);

}  // namespace zarnet
