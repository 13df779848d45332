#pragma once

#include "prepare/PreparedAudio.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <utility>

namespace zarnet {

/// Writes the diagnostic record of a comparison: a pretty-printed JSON object of 13 keys in alphabetical
/// order, ended by a line feed. `bitrate` in kbps; `peaks` are those of (original, lossy) before gain.
/// Replaces what is there. Writes nothing when a number is not finite. Raises `PlatformError` when the file
/// cannot be written; no partial record stays.
void writeCheckRecord(const std::filesystem::path& path, const PreparedAudio& prepared,
                      const std::string& codec, std::int64_t bitrate, bool matched,
                      std::pair<float, float> peaks);

}  // namespace zarnet
