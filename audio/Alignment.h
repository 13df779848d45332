#pragma once

#include "audio/PCM.h"

#include <cstdint>

namespace zarnet {

/// How two signals lie against each other in time.
struct Alignment {
  std::int64_t offset;  ///< frames: lossy frame i + offset lines up with original frame i; within ±2,408
  double correlation;   ///< normalised correlation at the best lag, in [−1, 1]; 1.0 where none was searched
};

/// Finds the offset of `lossy` against `original` by normalised cross-correlation of a loud excerpt of the
/// left channels: every eighth sample over ±2,400 frames first, then every sample around the winner. (0, 1.0)
/// when either signal is shorter than 15,001 frames or the excerpt is silent; offset 0 with the weak score
/// when the best match scores 0.45 or less. Never fails. Any thread.
Alignment alignment(const PCM& original, const PCM& lossy);

}  // namespace zarnet
