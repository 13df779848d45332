#pragma once

#include <filesystem>
#include <string_view>

namespace zarnet {

/// Writes a whole file in one step: a reader finds the old content or the new, never a part of it. The bytes
/// go to a file of a name six characters and a full stop longer in the same folder, are flushed to the disk,
/// and that file then takes the place of `path`. It keeps the permissions of the file that it replaces; a
/// symbolic link to a file stays and that file is written.
///
/// Raises `PlatformError` “NAME” could not be written: REASON. when the folder is gone or closed to the user,
/// the disk is full, the name is longer than the file system takes or the location is not valid UTF-8; what
/// was there before is then intact and nothing else is left behind.
void writeAtomically(const std::filesystem::path& path, std::string_view bytes);

}  // namespace zarnet
