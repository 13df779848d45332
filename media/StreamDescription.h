#pragma once

#include <cstdint>

namespace zarnet {

/// A four-character code held in 32 bits, first character in the most significant byte.
constexpr std::uint32_t fourCharacterCode(const char (&text)[5]) {
  return static_cast<std::uint32_t>(static_cast<unsigned char>(text[0])) << 24 |
         static_cast<std::uint32_t>(static_cast<unsigned char>(text[1])) << 16 |
         static_cast<std::uint32_t>(static_cast<unsigned char>(text[2])) << 8 |
         static_cast<std::uint32_t>(static_cast<unsigned char>(text[3]));
}

/// How a file stores its audio.
struct StreamDescription {
  double sampleRate = 0;       ///< Hz
  std::uint32_t formatID = 0;  ///< 'lpcm' for linear PCM of any width, order or number type, 'alac', 'flac';
                               ///< any other code is a lossy format ('.mp3', 'aac ', 'ulaw', …)
  std::uint32_t channelsPerFrame = 0;
  std::uint32_t bitsPerChannel =
      0;  ///< the real depth of PCM, FLAC and Apple Lossless; 0 where there is none
};

}  // namespace zarnet
