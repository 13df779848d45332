#include "prepare/Gains.h"

#include <cmath>

#include <gtest/gtest.h>

namespace zarnet {

TEST(Gains, LowerTheLouderVersionAndThenMakeRoomForThePeaks) {
  const float quieter = static_cast<float>(std::pow(10.0, -0.5 / 20.0));  // half a decibel down, 0.9441
  const float beyond = std::nextafter(0.98f, 1.0f);
  const struct {
    std::pair<double, double> loudness;
    std::pair<float, float> peaks;
    std::pair<float, float> gains;
  } table[] = {
      {{-14.0, -14.5}, {0.5f, 0.5f}, {quieter, 1.0f}},
      {{-14.5, -14.0}, {0.5f, 0.5f}, {1.0f, quieter}},
      // Unmatched: both alike.
      {{0.0, 0.0}, {0.98f, 0.5f}, {1.0f, 1.0f}},
      {{0.0, 0.0}, {0.5f, beyond}, {0.98f / beyond, 0.98f / beyond}},
      {{0.0, 0.0}, {1.4f, 2.0f}, {0.98f / 2.0f, 0.98f / 2.0f}},
      // The peak that counts is the one after the matching gain.
      {{-14.0, -14.5}, {1.0f, 1.1f}, {0.98f / 1.1f * quieter, 0.98f / 1.1f}},
      // Silence leaves no room to make.
      {{-120.0, -120.0}, {0.0f, 0.0f}, {1.0f, 1.0f}},
      {{-120.0, -120.0}, {1e-5f, 0.0f}, {1.0f, 1.0f}},
  };
  for (const auto& [loudness, peaks, gains] : table)
    EXPECT_EQ(playbackGains(loudness, peaks), gains) << loudness.first << " " << peaks.first;
}

}  // namespace zarnet
