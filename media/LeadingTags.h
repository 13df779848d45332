#pragma once

#include "system/FileHandle.h"

#include <cstdint>

namespace zarnet {

/// Where the ID3v2 tags at the start of a file end, bytes; 0 without any, never beyond the end of the file.
std::int64_t endOfLeadingTags(const FileHandle& file);

}  // namespace zarnet
