#pragma once

#include "prepare/PreparedAudio.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <utility>

namespace zarnet {

/// The diagnostic record of a comparison: a pretty-printed JSON object of 13 keys in alphabetical order,
/// ended by a line feed. `bitrate` in kbps; `peaks` are those of (original, lossy) before gain. Empty when a
/// number is not finite.
std::string checkRecordText(const PreparedAudio& prepared, const std::string& codec, std::int64_t bitrate,
                            bool matched, std::pair<float, float> peaks);

/// Writes that text, unless it is empty. Replaces what is there. Raises `PlatformError` when the file cannot
/// be written; no partial record stays.
void writeCheckRecord(const std::filesystem::path& path, const std::string& text);

}  // namespace zarnet
