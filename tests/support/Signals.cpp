#include "tests/support/Signals.h"

#include "tests/support/ScratchFolder.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>
#include <random>
#include <string>

namespace zarnet::test {

namespace {

Signal silence(double rate, int channels, std::int64_t frames) {
  return {rate, std::vector(static_cast<std::size_t>(channels),
                            std::vector<float>(static_cast<std::size_t>(frames)))};
}

template <typename Number>
void append(std::string& bytes, Number value, std::size_t size = sizeof(Number)) {
  char raw[sizeof(Number)];
  std::memcpy(raw, &value, sizeof raw);
  bytes.append(raw, size);
}

void appendSample(std::string& bytes, float sample, SampleType type) {
  const auto rounded = [&](double scale) {
    return static_cast<std::int32_t>(std::clamp(std::nearbyint(sample * scale), -scale, scale - 1));
  };
  switch (type) {
    case SampleType::int16:
      return append(bytes, rounded(0x1p15), 2);
    case SampleType::int24:
      return append(bytes, rounded(0x1p23), 3);
    case SampleType::int32:
      return append(bytes, rounded(0x1p31), 4);
    case SampleType::float32:
      return append(bytes, sample);
  }
}

/// Everything before the samples.
std::string waveHeader(std::uint32_t rate, std::uint16_t channels, std::uint16_t bits, std::uint32_t frames,
                       std::uint16_t formatTag) {
  const std::uint32_t frameBytes = std::uint32_t{channels} * bits / 8;
  std::string bytes = "RIFF";
  append(bytes, frames * frameBytes + 36);
  bytes += "WAVEfmt ";
  append(bytes, std::uint32_t{16});
  append(bytes, formatTag);
  append(bytes, channels);
  append(bytes, rate);
  append(bytes, rate * frameBytes);
  append(bytes, static_cast<std::uint16_t>(frameBytes));
  append(bytes, bits);
  bytes += "data";
  append(bytes, frames * frameBytes);
  return bytes;
}

}  // namespace

Signal sine(double rate, int channels, std::int64_t frames, double frequency, double amplitude) {
  Signal signal = silence(rate, channels, frames);
  for (auto& plane : signal.planes) {
    for (std::size_t i = 0; i < plane.size(); ++i) {
      plane[i] =
          static_cast<float>(amplitude * std::sin(2 * std::numbers::pi *
                                                  std::fmod(static_cast<double>(i) * frequency / rate, 1.0)));
    }
  }
  return signal;
}

Signal noise(double rate, int channels, std::int64_t frames, double amplitude, std::uint32_t seed) {
  Signal signal = silence(rate, channels, frames);
  std::mt19937 random(seed);
  for (auto& plane : signal.planes) {
    for (float& sample : plane) {
      sample = static_cast<float>(amplitude * (static_cast<double>(random()) / 0x1p31 - 1));
    }
  }
  return signal;
}

Signal music(double rate, int channels, double seconds, std::uint32_t seed) {
  const auto frames = static_cast<std::int64_t>(seconds * rate);
  Signal signal = noise(rate, channels, frames, 0.003, seed);
  std::mt19937 engine(seed);
  const auto random = [&](std::uint32_t below) {
    return static_cast<double>(static_cast<std::uint32_t>(engine()) % below);
  };
  for (auto& plane : signal.planes) {
    for (double start = 0; start < seconds; start += 0.17 + 0.0001 * random(900)) {
      const double pitch = 82.4 * std::exp2(random(36) / 12.0);
      const double level = 0.06 + 0.0001 * random(900);
      const auto first = static_cast<std::size_t>(start * rate);
      const auto last = std::min(plane.size(), first + static_cast<std::size_t>(0.9 * rate));
      for (int harmonic = 1; harmonic <= 9 && pitch * harmonic < 0.45 * rate; ++harmonic) {
        const double step = 2 * std::numbers::pi * pitch * harmonic / rate;
        for (std::size_t i = first; i < last; ++i) {
          const double age = static_cast<double>(i - first);
          plane[i] += static_cast<float>(level / harmonic * std::exp(-3.5 * harmonic * age / rate) *
                                         std::sin(step * age));
        }
      }
    }
  }
  float peak = 0;
  for (const auto& plane : signal.planes) {
    for (const float sample : plane)
      peak = std::max(peak, std::abs(sample));
  }
  for (auto& plane : signal.planes) {
    for (float& sample : plane)
      sample *= 0.7f / peak;
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
  bytes.reserve(bytes.size() + std::size_t{frames} * channels * bits / 8);
  for (std::size_t i = 0; i < frames; ++i) {
    for (const auto& plane : signal.planes)
      appendSample(bytes, plane[i], type);
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

}  // namespace zarnet::test
