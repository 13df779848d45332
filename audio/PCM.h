#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>

namespace zarnet {

/// A whole signal in the working format: 48,000 Hz, two planes of 32-bit floats, full scale ±1.0, neither
/// clipped nor normalised. Immutable once built and therefore free to be read from any thread; shared as
/// std::shared_ptr<const PCM>.
class PCM {
 public:
  static constexpr double rate = 48000.0;  ///< Hz
  /// 20 minutes, the longest signal that is held.
  static constexpr std::int64_t maximumCount = 57'600'000;

  /// Reads a whole file. Raises `PlatformError` when it cannot be opened or read; `AppError` "The comparison
  /// audio could not be decoded." unless it is 48 kHz stereo of 1 to `maximumCount` frames that fit in
  /// memory; `AppError` "The decoded file is empty." when no frame arrives.
  explicit PCM(const std::filesystem::path& url);
  PCM(const PCM&) = delete;
  PCM& operator=(const PCM&) = delete;

  /// The largest absolute sample of both channels, linear: 1.0 is full scale. 0 for silence.
  float peak() const;

  /// Integrated loudness in LUFS after ITU-R BS.1770 (K-weighting, 400 ms blocks with 75 % overlap, gates at
  /// −70 LUFS and 10 LU below the gated mean), in the exact order of operations given in Loudness.cpp.
  /// −120.0 when no block passes the absolute gate; a signal of at most 0.3 s is measured as one block
  /// without that gate, silence then being −120.691. Never fails.
  double loudness() const;

  /// Writes the samples as a raw sample file: interleaved little-endian 32-bit floats, 8 bytes a frame, no
  /// header. Replaces what is there. Raises `PlatformError`; what was written before a failure stays.
  void writeRaw(const std::filesystem::path& to) const;

 private:
  struct Loaded;
  static Loaded load(const std::filesystem::path& url);
  explicit PCM(Loaded loaded);

 public:
  const std::unique_ptr<const float[]> buffer;  ///< owns both planes
  const std::int64_t count;                     ///< frames, 1 to `maximumCount`
  const float* const left;                      ///< `count` samples
  const float* const right;                     ///< `count` samples
};

}  // namespace zarnet
