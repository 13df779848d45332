#pragma once

#include <cstdint>

namespace zarnet {

// Vector routines on 32-bit floats. Sums are kept in 32-bit floats in several lanes, so the order of
// additions is fixed but not that of a simple loop. A count of 0 gives 0. Any alignment will do. Any thread.

/// The largest absolute value of `count` samples.
float maximumMagnitude(const float* samples, std::int64_t count);

/// The sum of the squares of `count` samples.
float sumOfSquares(const float* samples, std::int64_t count);

/// The sum of a[k] × b[k] for k from 0 to `count` − 1.
float dotProduct(const float* a, const float* b, std::int64_t count);

}  // namespace zarnet
