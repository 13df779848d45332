#include "prepare/Gains.h"

#include <algorithm>
#include <cmath>

namespace zarnet {

namespace {

constexpr float highestPeak = 0.98f;  // of full scale, what a gained signal may reach
constexpr float silentPeak = 1e-5f;   // −100 dBFS; below it there is nothing to make room for

float attenuation(double target, double loudness) {
  return static_cast<float>(std::pow(10.0, (target - loudness) / 20.0));
}

}  // namespace

std::pair<float, float> playbackGains(std::pair<double, double> loudness, std::pair<float, float> peaks) {
  const double target = std::min(loudness.first, loudness.second);
  const float original = attenuation(target, loudness.first);
  const float lossy = attenuation(target, loudness.second);
  const float originalPeak = peaks.first * original;
  const float lossyPeak = peaks.second * lossy;
  float headroom = 1.0f;
  if (originalPeak >= silentPeak || lossyPeak >= silentPeak)
    headroom = std::min(highestPeak / std::max(originalPeak, lossyPeak), 1.0f);
  return {headroom * original, headroom * lossy};
}

}  // namespace zarnet
