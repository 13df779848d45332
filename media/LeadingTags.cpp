#include "media/LeadingTags.h"

#include <algorithm>

namespace zarnet {

std::int64_t endOfLeadingTags(const FileHandle& file) {
  constexpr int maximumTags = 16;
  std::int64_t offset = 0;
  std::uint8_t header[10];
  for (int i = 0; i < maximumTags && file.readAt(offset, header, sizeof header) == sizeof header; ++i) {
    const bool sizeIsValid = ((header[6] | header[7] | header[8] | header[9]) & 0x80) == 0;
    if (header[0] != 'I' || header[1] != 'D' || header[2] != '3' || !sizeIsValid) break;
    const std::int64_t bytes = header[6] << 21 | header[7] << 14 | header[8] << 7 | header[9];
    const bool hasFooter = (header[5] & 0x10) != 0;
    offset += bytes + (hasFooter ? 20 : 10);
  }
  return std::min(offset, file.size());
}

}  // namespace zarnet
