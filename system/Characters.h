#pragma once

#include <cstddef>
#include <string_view>

namespace zarnet {

/// Length in bytes of the UTF-8 character that starts at `position`: 0 when the bytes there are no character,
/// and also when the text ends in the middle of one, which `cutShort` then tells. Requires: position <
/// text.size().
std::size_t characterLength(std::string_view text, std::size_t position, bool& cutShort);

}  // namespace zarnet
