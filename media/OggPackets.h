#pragma once

#include "system/FileHandle.h"

#include <cstddef>
#include <cstdint>
#include <span>

#include <ogg/ogg.h>

namespace zarnet {

/// The frames of the FLAC stream with which an Ogg file starts, one behind the other. Pages that are damaged
/// and streams beside it are left out.
class OggPackets {
 public:
  /// Reads from the page that starts at `offset`, or the next one, to the end of the file. `firstPage` is
  /// where the stream starts. `file` outlives this object.
  OggPackets(const FileHandle& file, std::int64_t firstPage, std::int64_t offset);
  ~OggPackets();
  OggPackets(const OggPackets&) = delete;
  OggPackets& operator=(const OggPackets&) = delete;

  /// A `ByteSource`. Raises a `PlatformError` when the file cannot be read and when further streams follow
  /// the end of this one.
  std::size_t read(std::byte* target, std::size_t bytes);

 private:
  bool nextFrame();
  bool nextPage();
  bool fill();

  const FileHandle& file;
  std::int64_t position;
  int serialNumber;
  bool started;  ///< beyond the first pages of all streams
  ogg_sync_state pages{};
  ogg_stream_state packets{};
  std::span<const std::byte> rest;  ///< of the present frame
};

}  // namespace zarnet
