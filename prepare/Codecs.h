#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace zarnet {

/// The codecs by their display names, which are also how they are named everywhere; compared exactly.
inline constexpr std::array<std::string_view, 3> codecNames = {"AAC", "MP3", "Ogg Vorbis"};

/// The bitrates that a codec may be asked for, kbps, ascending. Any name other than "MP3" has the same list.
std::span<const std::int64_t> acceptedBitrates(std::string_view codec);

/// Whether `codec` is one of `codecNames` and `bitrate` one of its bitrates, kbps.
bool isAccepted(std::string_view codec, std::int64_t bitrate);

/// The file name extension of a codec's encodings, without its full stop. Requires: one of `codecNames`.
std::string_view encodedExtension(std::string_view codec);

}  // namespace zarnet
