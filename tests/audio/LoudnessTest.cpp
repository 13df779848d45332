#include "audio/PCM.h"
#include "tests/support/Signals.h"

#include <bit>
#include <cmath>
#include <numeric>

#include <ebur128.h>
#include <gtest/gtest.h>

namespace zarnet {
namespace {

using test::loaded;
using test::Signal;

double loudness(const Signal& signal) {
  return loaded(signal)->loudness();
}

/// The definition, one operation at a time.
double referenceLoudness(const Signal& signal) {
  const auto count = static_cast<std::size_t>(signal.count());
  std::vector<double> blocks((count + 4799) / 4800);
  for (const auto& plane : signal.planes) {
    double s1 = 0, s2 = 0, s3 = 0, s4 = 0;
    for (std::size_t i = 0; i < count; ++i) {
      const double x = plane[i];
      const double y1 = 1.53512485958697 * x + s1;
      const double y2 = y1 + s3;
      blocks[i / 4800] += y2 * y2;
      s3 = (1.99004745483398 * y2 - (y1 + y1)) + s4;
      s4 = y1 + -0.99007225036621 * y2;
      s1 = s2 + (-2.69169618940638 * x + 1.69065929318241 * y1);
      s2 = 1.19839281085285 * x + -0.73248077421585 * y1;
    }
  }
  std::vector<double> gated;
  const bool isShort = blocks.size() < 4;
  const std::size_t window = isShort ? blocks.size() : 4;
  for (std::size_t j = 0; j + window <= blocks.size(); ++j) {
    double sum = 0;
    for (std::size_t k = j; k < j + window; ++k)
      sum += blocks[k];
    const double mean = sum / (isShort ? static_cast<double>(count) : 19200.0);
    if (isShort || mean > 1.1724653045822981e-7) gated.push_back(mean);
  }
  if (gated.empty()) return -120.0;
  const auto mean = [&] {
    return std::accumulate(gated.begin(), gated.end(), 0.0) / static_cast<double>(gated.size());
  };
  const double threshold = mean() * 0.1;
  std::erase_if(gated, [&](double energy) { return energy < threshold; });
  return 10 * std::log10(std::max(mean(), 1e-12)) + -0.691;
}

}  // namespace

TEST(Loudness, MeetsTheStereoCasesOfEBUTech3341AndTheLimitsOfTheGates) {
  struct Segment {
    double level;  // dBFS of a 1 kHz sine in both channels
    std::int64_t frames;
  };
  constexpr double silent = -std::numeric_limits<double>::infinity();
  const struct {
    std::vector<Segment> segments;
    double expected;
  } cases[] = {
      {{{-23, 960'000}}, -23},
      {{{-33, 960'000}}, -33},
      {{{-36, 480'000}, {-23, 2'880'000}, {-36, 480'000}}, -23},
      {{{-72, 480'000}, {-36, 480'000}, {-23, 2'880'000}, {-36, 480'000}, {-72, 480'000}}, -23},
      {{{-26, 960'000}, {-20, 964'800}, {-26, 960'000}}, -23},
      {{{-69.9, 480'000}}, -69.9},
      {{{-70.1, 480'000}}, -120},
      {{{-90, 14'400}}, -90},  // too short for the gates
      {{{-90, 14'401}}, -120},
      {{{silent, 14'400}}, -120.691},
      {{{silent, 14'401}}, -120},
  };
  for (const auto& [segments, expected] : cases) {
    Signal signal = {48000, {{}, {}}};
    for (const auto& [level, frames] : segments) {
      const auto tone = test::sine(48000, 1, frames, 1000, std::pow(10, level / 20)).planes[0];
      for (auto& plane : signal.planes)
        plane.insert(plane.end(), tone.begin(), tone.end());
    }
    EXPECT_NEAR(loudness(signal), expected, 0.1) << segments[0].level << ", " << signal.count() << " frames";
  }
}

TEST(Loudness, AgreesWithAnIndependentMeterOnMusic) {
  Signal signal = test::music(48000, 2, 12);
  std::vector<float> interleaved;
  for (std::size_t i = 0; i < static_cast<std::size_t>(signal.count()); ++i) {
    for (auto& plane : signal.planes) {
      if (i > 200'000 && i < 400'000) plane[i] *= 0.02f;  // a passage under the relative gate
      interleaved.push_back(plane[i]);
    }
  }
  ebur128_state* meter = ebur128_init(2, 48000, EBUR128_MODE_I);
  ebur128_add_frames_float(meter, interleaved.data(), interleaved.size() / 2);
  double expected = 0;
  ebur128_loudness_global(meter, &expected);
  ebur128_destroy(&meter);
  EXPECT_NEAR(loudness(signal), expected, 0.01);
}

TEST(Loudness, KeepsTheOrderOfOperationsToTheLastBit) {
  const std::uint32_t seed = 20;
  std::vector<Signal> signals;
  // Lengths around every boundary of blocks and gates.
  for (const std::int64_t frames : {1, 2, 4799, 4800, 4801, 9600, 14'399, 14'400, 14'401, 19'199, 19'200,
                                    19'201, 24'000, 24'001, 100'003}) {
    signals.push_back(test::noise(48000, 2, frames, 0.25, seed + static_cast<std::uint32_t>(frames)));
  }
  signals.push_back(test::noise(48000, 2, 30'001, 1e-39, seed));
  // Sound again after the filters have rung out.
  Signal interrupted = test::noise(48000, 2, 400'001, 0.5, seed);
  std::fill(interrupted.planes[0].begin() + 30'000, interrupted.planes[0].begin() + 340'000, 0.0f);
  std::fill(interrupted.planes[1].begin() + 50'003, interrupted.planes[1].begin() + 390'000, 0.0f);
  signals.push_back(interrupted);
  for (const Signal& signal : signals) {
    EXPECT_EQ(std::bit_cast<std::uint64_t>(loudness(signal)),
              std::bit_cast<std::uint64_t>(referenceLoudness(signal)))
        << signal.count() << " frames, seed " << seed;
  }
}

}  // namespace zarnet
