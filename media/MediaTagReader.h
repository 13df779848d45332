#pragma once

#include "media/MediaTags.h"

#include <filesystem>
#include <functional>
#include <string>

namespace zarnet {

// The kind of a file is told by its content, never by its name. What is read of it before the first picture
// is at most 64 MiB, and damage ends the reading. Nothing raises for any file, none at all included, and
// nothing is printed. Any thread.

/// Reads the texts of a file's tags. What cannot be read is left out.
MediaTags readMediaTags(const std::filesystem::path& path);

/// Hands the pictures in a file's tags to `take` until it returns true: each encoded as it was before it came
/// into the tag, the container's own before those of ID3v2 frames, otherwise in the order of the file,
/// whatever kind of cover they claim to be. One at a time is in memory. A picture with which they would have
/// taken more than 128 MiB of the file is left out.
void eachPicture(const std::filesystem::path& path, const std::function<bool(const std::string&)>& take);

}  // namespace zarnet
