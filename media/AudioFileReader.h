#pragma once

#include "media/StreamDescription.h"

#include <cstdint>
#include <filesystem>
#include <memory>

namespace zarnet {

/// Reads the first audio stream of a file as 32-bit float planes at the file's own rate and channel count
/// (full scale is ±1.0; nothing is clipped). Cover art, further streams and video are passed over. Encoder
/// delay and padding that an MP3 or MPEG-4 file states are trimmed.
///
/// Any file is opened by its content through the file protocol alone; a playlist, an image sequence or a name
/// like "x:y" opens nothing else. Every error is a `PlatformError`; nothing is printed. Not thread-safe;
/// separate readers may run on separate threads.
class AudioFileReader {
 public:
  /// Opens the file and reads its stream description. Raises when it is missing, unreadable, empty, a folder
  /// or holds no audio that can be decoded (FLAC beyond 24 bits inside CAF, MPEG-4 and Matroska is such).
  explicit AudioFileReader(const std::filesystem::path& path);
  ~AudioFileReader();
  AudioFileReader(const AudioFileReader&) = delete;
  AudioFileReader& operator=(const AudioFileReader&) = delete;

  /// The stream as it is stored.
  const StreamDescription& fileFormat() const;
  /// Sample rate of what `read` delivers, Hz.
  double processingRate() const;
  /// Number of planes that `read` fills.
  std::uint32_t processingChannels() const;

  /// Length in frames at the processing rate: as many as `read` delivers from the start of an undamaged file.
  /// Exact, never estimated from a bitrate. Known at once for linear PCM, and for other lossless files whose
  /// last packets confirm the total that the container states; otherwise the first call decodes the file. A
  /// lossless file that ends before its announced end, and states no checksum, counts what is there. 0 for a
  /// file without audio data. May be called at any time without moving the reading position. Raises as `read`
  /// does.
  std::int64_t length();

  /// Reads the next frames into `planes` (one pointer for each channel, each with room for `frames` samples).
  /// Returns how many frames were delivered: fewer than asked only at the end, 0 from then on. Raises when
  /// the file cannot be read, when a lossless stream is damaged before its last packet, and at the end of a
  /// FLAC file whose samples do not match the checksum that it states; damage in a lossy stream is passed
  /// over.
  std::int64_t read(float* const* planes, std::int64_t frames);

 private:
  struct State;
  std::unique_ptr<State> state;
};

}  // namespace zarnet
