#pragma once

#include "audio/PCM.h"
#include "tests/support/ScratchFolder.h"

namespace zarnet::test {

/// A test signal: one plane for each channel, all of the same length.
struct Signal {
  double rate = 48000;
  std::vector<std::vector<float>> planes;

  std::int64_t count() const { return planes.empty() ? 0 : static_cast<std::int64_t>(planes[0].size()); }
};

/// How samples are stored by `writeWave`.
enum class SampleType { int16, int24, int32, float32 };

/// A sine of `amplitude` (linear) in every channel.
Signal sine(double rate, int channels, std::int64_t frames, double frequency, double amplitude);

/// White noise, uniform in ±amplitude, independent in each channel.
Signal noise(double rate, int channels, std::int64_t frames, double amplitude, std::uint32_t seed);

/// Something that codecs treat as music: a few decaying harmonic notes a second over a soft noise floor, with
/// different content in the two channels, peaks near −3 dBFS. The same for the same arguments.
Signal music(double rate, int channels, double seconds, std::uint32_t seed = 1);

/// A signal in which every frame identifies itself, exact in 24-bit integers and in float, never zero:
/// left (2k + 1 − 2^20) / 2^21, right its negative. Requires: frames ≤ 2^20.
Signal counting(double rate, std::int64_t frames);

/// Writes a RIFF WAVE file with samples rounded to the type (not dithered), and returns its location.
std::filesystem::path writeWave(const std::filesystem::path& path, const Signal& signal,
                                SampleType type = SampleType::float32);

/// Writes a WAVE file of zero bytes as a hole in the file, so that any length costs no disk. Format tag 1 is
/// linear PCM, 7 is µ-law.
std::filesystem::path writeHollowWave(const std::filesystem::path& path, std::uint32_t rate,
                                      std::uint16_t channels, std::uint16_t bits, std::uint32_t frames,
                                      std::uint16_t formatTag = 1);

/// All that a file holds, read in pieces that do not divide its length. Fails the test when `length` is not
/// the number of frames that arrive. Raises what the reader raises.
Signal readSignal(const std::filesystem::path& path);

/// The signal as a `PCM`, every sample bit for bit, by way of a scratch file. Requires: 48,000 Hz, two
/// channels, at least one frame.
std::shared_ptr<const PCM> loaded(const Signal& signal);

/// By how many frames `later` lags behind `earlier`, from −50 to 50. Requires: more than 100 frames.
std::int64_t lag(const std::vector<float>& earlier, const std::vector<float>& later);

}  // namespace zarnet::test
