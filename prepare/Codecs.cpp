#include "prepare/Codecs.h"

#include <algorithm>

namespace zarnet {

namespace {

// What MPEG-1 and MPEG-2 Layer III know at 48 and 16 kHz.
constexpr std::array<std::int64_t, 17> mp3Bitrates = {8,  16,  24,  32,  40,  48,  56,  64, 80,
                                                      96, 112, 128, 160, 192, 224, 256, 320};
constexpr std::span<const std::int64_t> otherBitrates = std::span(mp3Bitrates).subspan(7);

}  // namespace

std::span<const std::int64_t> acceptedBitrates(std::string_view codec) {
  return codec == "MP3" ? std::span(mp3Bitrates) : otherBitrates;
}

bool isAccepted(std::string_view codec, std::int64_t bitrate) {
  return std::ranges::count(codecNames, codec) > 0 &&
         std::ranges::count(acceptedBitrates(codec), bitrate) > 0;
}

std::string_view encodedExtension(std::string_view codec) {
  return codec == "AAC" ? "m4a" : codec == "MP3" ? "mp3" : "ogg";
}

}  // namespace zarnet
