#pragma once

#include "prepare/PreparedAudio.h"
#include "tests/support/Signals.h"

namespace zarnet::test {

/// A prepared comparison of two 48 kHz stereo signals, as it comes from the preparation.
inline PreparedAudio comparison(const Signal& original, const Signal& lossy, std::int64_t offset = 0,
                                std::pair<float, float> gains = {1.0f, 1.0f}) {
  PreparedAudio prepared{};
  prepared.original = loaded(original);
  prepared.lossy = loaded(lossy);
  prepared.offset = offset;
  prepared.gains = gains;
  return prepared;
}

/// The player's fields and its rendering, one frame after the other.
struct ReferencePlayer {
  PreparedAudio audio;
  bool losslessA = true;
  std::int64_t position = 0;
  bool running = false;
  bool selectedA = true;
  float blend = losslessA ? 0.0f : 1.0f;
  float volume = 0.7f;
  bool looping = false;
  std::int64_t loopStart = 0;
  std::int64_t loopEnd = audio.original->count;
  float fade = 0;

  std::array<float, 2> frame() {
    constexpr float step = 1.0f / 240;
    const float target = selectedA != losslessA ? 1.0f : 0.0f;
    if (looping && position >= loopEnd) {
      position = loopStart;
      fade = 0;
    }
    if (position >= audio.original->count) running = false;
    blend = blend + std::min(std::max(target - blend, -step), step);
    fade = std::min(fade + step, 1.0f);
    const std::int64_t j = position + audio.offset;
    const float a = volume * fade;
    std::array<float, 2> samples = {0, 0};
    for (const std::size_t channel : {0u, 1u}) {
      if (!running) continue;
      const float* const o = channel == 0 ? audio.original->left : audio.original->right;
      const float* const l = channel == 0 ? audio.lossy->left : audio.lossy->right;
      const float x = 0 <= j && j < audio.lossy->count ? l[j] : 0.0f;
      samples[channel] = a * (o[position] * (1 - blend) * audio.gains.first + x * blend * audio.gains.second);
    }
    if (running) ++position;
    return samples;
  }
};

}  // namespace zarnet::test
