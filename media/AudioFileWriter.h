#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>

namespace zarnet {

/// A kind of file that `AudioFileWriter` writes.
enum class AudioFileContainer {
  caf,   ///< Core Audio Format
  wave,  ///< RIFF WAVE; holds whole rates and up to 4 GiB
};

/// Writes stereo 32-bit float linear PCM from separate planes. Samples are stored little-endian, bit for bit
/// as given. Every error is a `PlatformError` that names the file. Not thread-safe.
class AudioFileWriter {
 public:
  /// Creates the file, replacing what is there. Requires: sampleRate > 0 in Hz. The container follows from
  /// the name, ".caf" or ".wav"; any other extension raises.
  AudioFileWriter(const std::filesystem::path& path, double sampleRate);
  /// The same with a container that has nothing to do with the name.
  AudioFileWriter(const std::filesystem::path& path, AudioFileContainer container, double sampleRate);
  /// Completes the file as `finish` does when that was not called, ignoring errors.
  ~AudioFileWriter();
  AudioFileWriter(const AudioFileWriter&) = delete;
  AudioFileWriter& operator=(const AudioFileWriter&) = delete;

  /// Appends `frames` frames of the two planes, left and right. 0 frames append nothing. Raises when the disk
  /// is full, and, before it writes any of them, when they would make a WAVE file too large to state its
  /// size.
  void write(const float* const* planes, std::int64_t frames);

  /// Completes the header and closes the file; a file without frames is valid. Raises when anything is left
  /// unwritten (a full disk shows here at the latest). Nothing may be written afterwards.
  void finish();

 private:
  struct State;
  std::unique_ptr<State> state;
};

}  // namespace zarnet
