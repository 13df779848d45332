#pragma once

#include "system/FileHandle.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>

namespace zarnet {

/// What the STREAMINFO block of a FLAC stream states (RFC 9639, section 8.2); a total that it leaves out may
/// be the one that the last page of an Ogg file states.
struct FlacHeader {
  static constexpr std::size_t blockBytes = 34;

  std::array<std::byte, blockBytes> block;  ///< as it is stored
  std::uint32_t sampleRate;                 ///< Hz, 1 to 1,048,575
  std::uint32_t channels;                   ///< 1 to 8
  std::uint32_t bits;                       ///< in each sample, 4 to 32
  std::uint32_t longestBlock;               ///< frames, as stated
  std::int64_t totalFrames;                 ///< 0 where none is stated
  bool hasChecksum;                         ///< an MD5 of all samples is stated
};

/// A FLAC stream as it lies in a file.
struct FlacFile {
  enum class Container { native, ogg };

  Container container;
  FlacHeader header;
  std::int64_t start;  ///< of the coded frames (native) or of the first page (Ogg), bytes
};

/// Looks for a FLAC stream behind the ID3v2 tags at the start of a file, or in the first page of an Ogg file.
/// Nothing for any other file. Raises a `PlatformError` when the file cannot be read, or is a native FLAC
/// file without a usable header.
std::optional<FlacFile> findFlac(const FileHandle& file);

/// Delivers up to `bytes` bytes and returns how many: 0 at the end.
using ByteSource = std::function<std::size_t(std::byte* target, std::size_t bytes)>;

/// The coded frames from the start of a stream on. `file` outlives the source. Calling it raises a
/// `PlatformError` when the file cannot be read, and when another Ogg stream follows the first one.
ByteSource flacFrames(const FileHandle& file, const FlacFile& flac);

/// The coded frames near the end, at least the last one of a file that nothing of size follows; what comes
/// before the first whole frame is to be passed over.
ByteSource lastFlacFrames(const FileHandle& file, const FlacFile& flac);

}  // namespace zarnet
