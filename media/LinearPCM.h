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

/// How many frames of a compressed stream are meant to be heard.
struct PacketTable {
  std::int64_t primingFrames = 0;  ///< to be dropped at the start
  std::int64_t validFrames = 0;    ///< that follow them
};

/// The packet table of a Core Audio Format file; nothing when there is none that makes sense.
std::optional<PacketTable> findPacketTable(const FileHandle& file);

}  // namespace zarnet
