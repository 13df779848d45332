#pragma once

#include <cstdint>

namespace zarnet {

// Stereo between its two forms: separate planes, and frames of a left sample followed by a right one. Plain
// loops, which the compiler turns into whole vectors. Neither form may overlap the other. 0 frames touch
// nothing. Any thread.

/// Stores `frames` frames of the two planes into `target`, which has room for twice as many samples.
inline void interleave(const float* left, const float* right, std::int64_t frames, float* target) {
  for (std::int64_t i = 0; i < frames; ++i) {
    target[2 * i] = left[i];
    target[2 * i + 1] = right[i];
  }
}

/// Stores `frames` frames of `source` into the two planes.
inline void deinterleave(const float* source, std::int64_t frames, float* left, float* right) {
  for (std::int64_t i = 0; i < frames; ++i) {
    left[i] = source[2 * i];
    right[i] = source[2 * i + 1];
  }
}

}  // namespace zarnet
