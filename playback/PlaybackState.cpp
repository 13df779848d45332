#include "playback/PlaybackState.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>

namespace zarnet {

namespace {

constexpr float step = 1.0f / 240.0f;      // of blend and fade in each frame
constexpr std::int64_t blockFrames = 256;  // rendered in one pass at most

using Block = std::array<float, blockFrames>;
using Four = float __attribute__((vector_size(16)));

constexpr Block noSignal = {};  // what the lossy version contributes outside its range

/// Moves a value towards 0 or 1 by `step` a frame and leaves it there. Takes as long in both directions.
float moved(float value, float target, Block& values, std::int64_t frames) {
  const float stride = target > value ? step : -step;
  float* next = values.data();
  float* const end = next + frames;
  for (; next != end && std::abs(target - value) > step; ++next)
    *next = value += stride;
  for (; next != end; ++next)
    *next = value += target - value;
  return value;
}

/// The two versions of one channel at the same moment, and how loud they are to be.
struct Versions {
  const float* original;
  const float* lossy;
  float originalGain;
  float lossyGain;
  float volume;
};

/// One sample (Number is float) or four in a row (Four), from `first` on.
template <typename Number>
Number at(const float* samples, std::int64_t first) {
  Number number;
  std::memcpy(&number, samples + first, sizeof number);
  return number;
}

/// Mixes `frames` samples; blend(k, Number) and fade(k, Number) give the two factors from frame k on.
template <typename Blend, typename Fade>
void mix(float* output, std::int64_t frames, Versions versions, Blend blend, Fade fade) {
  const auto mixAt = [&](std::int64_t k, auto number) {
    using Number = decltype(number);
    const Number blended = blend(k, number);
    const Number level = versions.volume * fade(k, number);
    const Number sample =
        level * (at<Number>(versions.original, k) * (1.0f - blended) * versions.originalGain +
                 at<Number>(versions.lossy, k) * blended * versions.lossyGain);
    std::memcpy(output + k, &sample, sizeof sample);
  };
  std::int64_t k = 0;
  for (; k + 4 <= frames; k += 4)
    mixAt(k, Four{});
  for (; k < frames; ++k)
    mixAt(k, float{});
}

}  // namespace

void PlaybackState::render(bool& silence, std::span<float* const> buffers, std::int64_t frames) {
  const MutexLock hold(lock);
  silence = !running || !audio;
  if (silence) {
    for (float* const buffer : buffers) {
      if (buffer != nullptr) std::fill_n(buffer, frames, 0.0f);
    }
    return;
  }
  for (std::int64_t done = 0; done < frames;)
    done += renderBlock(buffers, done, frames - done);
}

/// Renders up to `wanted` frames that lie between two events (a jump, an end) and returns their number.
std::int64_t PlaybackState::renderBlock(std::span<float* const> buffers, std::int64_t done,
                                        std::int64_t wanted) {
  const PCM& original = *audio->original;
  const PCM& lossy = *audio->lossy;
  if (looping && position >= loopEnd) {
    position = loopStart;
    fade = 0;
  }
  if (position >= original.count) running = false;

  std::int64_t frames = std::min(wanted, blockFrames);
  const std::int64_t lossyPosition = position + audio->offset;
  const bool lossySounds = lossyPosition >= 0 && lossyPosition < lossy.count;
  if (running) {
    frames = std::min(frames, (looping ? std::min(loopEnd, original.count) : original.count) - position);
    if (lossyPosition < 0) frames = std::min(frames, -lossyPosition);
    if (lossySounds) frames = std::min(frames, lossy.count - lossyPosition);
  }

  const float target = selectedA != losslessA ? 1.0f : 0.0f;
  const bool moving = blend != target || fade != 1.0f;
  Block blends;
  Block fades;
  if (moving) {
    blend = moved(blend, target, blends, frames);
    fade = moved(fade, 1.0f, fades, frames);
  }

  for (std::size_t channel = 0; channel < std::min<std::size_t>(buffers.size(), 2); ++channel) {
    if (buffers[channel] == nullptr) continue;
    float* const output = buffers[channel] + done;
    if (!running) {
      std::fill_n(output, frames, 0.0f);
      continue;
    }
    const Versions versions = {
        (channel == 0 ? original.left : original.right) + position,
        lossySounds ? (channel == 0 ? lossy.left : lossy.right) + lossyPosition : noSignal.data(),
        audio->gains.first, audio->gains.second, volume};
    const auto from = [](const Block& block) {
      return [&block](std::int64_t k, auto number) { return at<decltype(number)>(block.data(), k); };
    };
    const auto always = [](float value) {
      return [value](std::int64_t, auto number) { return number + value; };
    };
    if (moving) {
      mix(output, frames, versions, from(blends), from(fades));
    } else {
      mix(output, frames, versions, always(blend), always(fade));
    }
  }
  if (running) position += frames;
  return frames;
}

}  // namespace zarnet
