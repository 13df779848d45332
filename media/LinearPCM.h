#pragma once

#include "media/SampleConversion.h"
#include "system/FileHandle.h"

#include <cstdint>
#include <optional>

namespace zarnet {

/// Where and how a file holds interleaved linear PCM. The frames lie inside the file, whatever its header
/// announces.
struct LinearPCM {
  double sampleRate = 0;       ///< Hz, finite and above 0
  std::uint32_t channels = 0;  ///< 1 to 65,535
  std::uint32_t bits = 0;      ///< real depth, 1 to 8 × layout.bytes; the sample fills the upper bits
  SampleLayout layout;         ///< one that `convertSamples` knows
  std::int64_t offset = 0;     ///< of the first frame in the file, bytes
  std::int64_t frames = 0;

  std::int64_t frameBytes() const { return std::int64_t{channels} * layout.bytes; }
};

/// Looks for linear PCM in a RIFF WAVE (RF64 and BW64 included), AIFF, AIFF-C or Core Audio Format file. Of a
/// sample area that is cut off, or that was never given its size, the whole frames that are there count.
/// Nothing for any other file, for compressed audio in one of these containers, and for a header that is
/// damaged. Raises a `PlatformError` only when the file cannot be read.
std::optional<LinearPCM> findLinearPCM(const FileHandle& file);

/// What a Core Audio Format file states about its stream, linear PCM or not.
struct CafStream {
  double sampleRate = 0;       ///< Hz, any number
  std::uint32_t formatID = 0;  ///< a four-character code
  std::uint32_t channels = 0;
  bool empty = false;              ///< there is no packet
  std::int64_t primingFrames = 0;  ///< to be dropped at the start
  std::int64_t validFrames = 0;    ///< that follow them; 0 where there is no packet table that makes sense
};

/// Nothing for any other file, and without a whole description.
std::optional<CafStream> findCafStream(const FileHandle& file);

}  // namespace zarnet
