#include "system/Characters.h"

#include <cstdint>

#include <unicode/utf8.h>

namespace zarnet {

std::size_t characterLength(std::string_view text, std::size_t position, bool& cutShort) {
  const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data()) + position;
  const std::size_t left = text.size() - position;
  cutShort = false;
  if (bytes[0] < 0x80) return 1;
  const auto available = static_cast<std::int32_t>(left < U8_MAX_LENGTH ? left : U8_MAX_LENGTH);
  std::int32_t next = 0;
  UChar32 character = 0;
  U8_NEXT(bytes, next, available, character);
  if (character >= 0) return static_cast<std::size_t>(next);
  // The macro stops at the first byte that does not fit; only the end of the text makes it stop there.
  cutShort = next == available && available < U8_COUNT_TRAIL_BYTES(bytes[0]) + 1;
  return 0;
}

}  // namespace zarnet
