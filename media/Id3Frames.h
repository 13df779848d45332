#pragma once

#include "media/TagFile.h"
#include "media/TagValues.h"

#include <cstdint>

namespace zarnet {

/// Reads the frames for title, artist, album and pictures of the ID3v2 tag (2.2, 2.3, 2.4) that begins at
/// `start` and reaches `end` at most. Compressed and encrypted frames are passed over. Returns where the tag
/// ends by its own account: `start` when none begins there.
std::int64_t readId3(TagFile& file, std::int64_t start, std::int64_t end, FoundTags& tags);

}  // namespace zarnet
