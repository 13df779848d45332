#pragma once

#include "media/TagFile.h"
#include "media/TagValues.h"

#include <cstdint>
#include <string_view>

namespace zarnet {

/// Reads the first block of Vorbis comments and all picture blocks of the FLAC stream that begins at `start`.
void readFlacTags(TagFile& file, std::int64_t start, FoundTags& tags);

/// A place within something.
struct Stretch {
  std::int64_t offset = 0;
  std::int64_t size = 0;
};

/// Where the picture lies in a FLAC picture block of `size` bytes that begins with `head`; empty when that
/// does not reach as far.
Stretch pictureInBlock(std::string_view head, std::int64_t size);

}  // namespace zarnet
