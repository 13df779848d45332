#pragma once

#include "media/MediaTags.h"

#include <filesystem>

namespace zarnet {

/// Reads the tags of a file. The kind of file is told by its content, never by its name. Never fails: what
/// cannot be read, a damaged tag, a picture over 64 MiB and a text over 1 MiB are left out; no file at all
/// gives no tags. Nothing is printed. Any thread.
MediaTags readMediaTags(const std::filesystem::path& path);

}  // namespace zarnet
