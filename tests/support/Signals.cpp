#include "tests/support/Signals.h"

#include "audio/VectorMath.h"
#include "media/AudioFileReader.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>
#include <random>

namespace zarnet::test {

namespace {

Signal silence(double rate, int channels, std::int64_t frames) {
  return {rate, std::vector(static_cast<std::size_t>(channels),
                            std::vector<float>(static_cast<std::size_t>(frames)))};
}

/// Everything before the samples.
std::string waveHeader(std::uint32_t rate, std::uint16_t channels, std::uint16_t bits, std::uint32_t frames,
                       std::uint16_t formatTag) {
  const std::uint32_t frameBytes = channels * bits / 8u;
  return "RIFF" + littleEndian(frames * frameBytes + 36, 4) + "WAVE" +
         riffChunk("fmt ", littleEndian(formatTag, 2) + littleEndian(channels, 2) + littleEndian(rate, 4) +
                               littleEndian(rate * frameBytes, 4) + littleEndian(frameBytes, 2) +
                               littleEndian(bits, 2)) +
         "data" + littleEndian(frames * frameBytes, 4);
}

}  // namespace

Signal sine(double rate, int channels, std::int64_t frames, double frequency, double amplitude) {
  Signal signal = silence(rate, channels, frames);
  for (auto& plane : signal.planes) {
    for (std::size_t i = 0; i < plane.size(); ++i) {
      const double turns = std::fmod(static_cast<double>(i) * frequency / rate, 1.0);
      plane[i] = static_cast<float>(amplitude * std::sin(2 * std::numbers::pi * turns));
    }
  }
  return signal;
}

Signal noise(double rate, int channels, std::int64_t frames, double amplitude, std::uint32_t seed) {
  Signal signal = silence(rate, channels, frames);
  std::mt19937 random(seed);
  for (auto& plane : signal.planes) {
    for (float& sample : plane)
      sample = static_cast<float>(amplitude * (static_cast<double>(random()) / 0x1p31 - 1));
  }
  return signal;
}

Signal music(double rate, int channels, double seconds, std::uint32_t seed) {
  Signal signal = noise(rate, channels, static_cast<std::int64_t>(seconds * rate), 0.006, seed);
  std::mt19937 engine(seed);
  const auto below = [&](std::uint32_t limit) { return static_cast<int>(engine() % limit); };
  for (auto& plane : signal.planes) {
    for (double start = 0; start < seconds; start += 0.17 + 0.0001 * below(900)) {
      const double pitch = 2 * std::numbers::pi * 82.4 * std::exp2(below(36) / 12.0);
      const double level = 0.15 + 0.0002 * below(900);
      const auto first = static_cast<std::size_t>(start * rate);
      for (std::size_t i = first; i < std::min(plane.size(), first + 40'000); ++i) {
        const double age = static_cast<double>(i - first) / rate;
        for (int harmonic = 1; harmonic <= 9; ++harmonic)
          plane[i] += static_cast<float>(level / harmonic * std::exp(-3.5 * harmonic * age) *
                                         std::sin(pitch * harmonic * age));
      }
    }
  }
  return signal;
}

Signal counting(double rate, std::int64_t frames) {
  Signal signal = silence(rate, 2, frames);
  for (std::size_t k = 0; k < static_cast<std::size_t>(frames); ++k) {
    signal.planes[0][k] = (2.0f * static_cast<float>(k) + 1 - 0x1p20f) * 0x1p-21f;
    signal.planes[1][k] = -signal.planes[0][k];
  }
  return signal;
}

std::filesystem::path writeWave(const std::filesystem::path& path, const Signal& signal, SampleType type) {
  const std::uint16_t bits = type == SampleType::int16 ? 16 : type == SampleType::int24 ? 24 : 32;
  const auto channels = static_cast<std::uint16_t>(signal.planes.size());
  const auto frames = static_cast<std::uint32_t>(signal.count());
  std::string bytes = waveHeader(static_cast<std::uint32_t>(signal.rate), channels, bits, frames,
                                 type == SampleType::float32 ? 3 : 1);
  for (std::size_t i = 0; i < frames; ++i) {
    for (const auto& plane : signal.planes) {
      const std::int32_t sample =
          type == SampleType::float32
              ? std::bit_cast<std::int32_t>(plane[i])
              : static_cast<std::int32_t>(std::nearbyint(std::ldexp(plane[i], bits - 1)));
      bytes.append(reinterpret_cast<const char*>(&sample), bits / 8u);
    }
  }
  return writeFile(path, bytes);
}

std::filesystem::path writeHollowWave(const std::filesystem::path& path, std::uint32_t rate,
                                      std::uint16_t channels, std::uint16_t bits, std::uint32_t frames,
                                      std::uint16_t formatTag) {
  const std::string header = waveHeader(rate, channels, bits, frames, formatTag);
  writeFile(path, header);
  std::filesystem::resize_file(path, header.size() + std::uintmax_t{frames} * channels * bits / 8);
  return path;
}

Signal readSignal(const std::filesystem::path& path) {
  constexpr std::size_t piece = 7'919;
  AudioFileReader reader(path);
  Signal signal{reader.processingRate(), std::vector<std::vector<float>>(reader.processingChannels())};
  std::vector<std::vector<float>> part(signal.planes.size(), std::vector<float>(piece));
  std::vector<float*> targets;
  for (auto& plane : part)
    targets.push_back(plane.data());
  while (const std::int64_t delivered = reader.read(targets.data(), piece)) {
    for (std::size_t channel = 0; channel < part.size(); ++channel)
      signal.planes[channel].insert(signal.planes[channel].end(), targets[channel],
                                    targets[channel] + delivered);
  }
  EXPECT_EQ(reader.length(), signal.count()) << path;
  return signal;
}

std::shared_ptr<const PCM> loaded(const Signal& signal) {
  const ScratchFolder scratch;
  return std::make_shared<const PCM>(writeWave(scratch / "signal.wav", signal));
}

std::int64_t lag(const std::vector<float>& earlier, const std::vector<float>& later) {
  constexpr std::int64_t range = 50;
  const auto count = static_cast<std::int64_t>(std::min(earlier.size(), later.size())) - 2 * range;
  std::vector<float> matches;
  for (std::int64_t shift = -range; shift <= range; ++shift)
    matches.push_back(dotProduct(earlier.data() + range, later.data() + range + shift, count));
  return std::ranges::max_element(matches) - matches.begin() - range;
}

}  // namespace zarnet::test
