#include "audio/Alignment.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

namespace zarnet {
namespace {

using test::loaded;
using test::Signal;

/// The signal `frames` later, with zeros before it, or earlier by a negative number.
Signal shifted(Signal signal, std::int64_t frames) {
  for (auto& plane : signal.planes) {
    if (frames < 0) plane.erase(plane.begin(), plane.begin() - frames);
    if (frames > 0) plane.insert(plane.begin(), static_cast<std::size_t>(frames), 0.0f);
  }
  return signal;
}

}  // namespace

TEST(Alignment, FindsAnyOffsetWithinItsReachOfSignalsThatCorrelate) {
  const Signal music = test::music(48000, 2, 3);
  const Signal noise = test::noise(48000, 2, 100'000, 0.5, 1);
  Signal parted = shifted(noise, 80);  // late by 96 frames in the half that is louder
  Signal halfLoud = noise;
  for (std::size_t i = 50'000; i < 100'000; ++i) {
    halfLoud.planes[0][i] *= 2;
    parted.planes[0][i] = halfLoud.planes[0][i - 96];
  }
  Signal silentAtAnchors = noise;
  for (const std::int64_t anchor : {10'000, 25'000, 50'000, 70'000})
    std::fill_n(silentAtAnchors.planes[0].begin() + anchor, 8192, 0.0f);
  struct Case {
    const char* name;
    Signal original, lossy;
    std::int64_t offset;
    double correlation;
  };
  std::vector<Case> cases = {
      {"beyond the reach", noise, shifted(noise, 3000), 0, 0},
      {"beyond the reach, early", noise, shifted(noise, -3000), 0, 0},
      {"the loudest part counts", halfLoud, parted, 96, 1},
      {"silence", silentAtAnchors, noise, 0, 1},
      {"too short", shifted(noise, -85'000), noise, 0, 1},
  };
  for (const std::int64_t lag : {0, 1, -1, 1105, -1023, 2408, -2408})
    cases.push_back({"a plain offset", music, shifted(music, lag), lag, 1});
  for (const auto& [name, original, lossy, offset, correlation] : cases) {
    const Alignment found = alignment(*loaded(original), *loaded(lossy));
    EXPECT_EQ(found.offset, offset) << name;
    EXPECT_NEAR(found.correlation, correlation, 0.05) << name << ", " << offset;
    EXPECT_LE(found.correlation, 1.0) << name << ", " << offset;
  }
}

}  // namespace zarnet
