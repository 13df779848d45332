#include "audio/VectorMath.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace zarnet {

namespace {

// Term k of a sum goes to lane k mod 16: four registers of four, which hides the latency of the additions.
constexpr std::int64_t laneCount = 16;
constexpr std::size_t registerCount = 4;

using Register = float __attribute__((vector_size(16)));

struct Lanes {
  Register registers[registerCount];
};

Lanes load(const float* samples) {
  Lanes lanes;
  std::memcpy(&lanes, samples, sizeof lanes);
  return lanes;
}

/// The last `terms` (fewer than 16) of a row; lanes without a term are 0.
Lanes loadRest(const float* samples, std::int64_t terms) {
  float values[laneCount] = {};
  std::copy_n(samples, terms, values);
  return load(values);
}

float total(const Lanes& sums) {
  const Register sum = (sums.registers[0] + sums.registers[1]) + (sums.registers[2] + sums.registers[3]);
  return (sum[0] + sum[1]) + (sum[2] + sum[3]);
}

}  // namespace

float maximumMagnitude(const float* samples, std::int64_t count) {
  Lanes most{};
  const auto take = [&most](const Lanes& values) {
    for (std::size_t r = 0; r < registerCount; ++r) {
      const Register value = values.registers[r];
      const Register magnitude = value < 0.0f ? -value : value;
      most.registers[r] = magnitude > most.registers[r] ? magnitude : most.registers[r];
    }
  };
  std::int64_t k = 0;
  for (; k + laneCount <= count; k += laneCount)
    take(load(samples + k));
  take(loadRest(samples + k, count - k));
  float magnitudes[laneCount];
  std::memcpy(magnitudes, &most, sizeof magnitudes);
  return *std::max_element(magnitudes, magnitudes + laneCount);
}

float sumOfSquares(const float* samples, std::int64_t count) {
  return dotProduct(samples, samples, count);
}

float dotProduct(const float* a, const float* b, std::int64_t count) {
  Lanes sums{};
  const auto add = [&sums](const Lanes& left, const Lanes& right) {
    for (std::size_t r = 0; r < registerCount; ++r)
      sums.registers[r] += left.registers[r] * right.registers[r];
  };
  std::int64_t k = 0;
  for (; k + laneCount <= count; k += laneCount)
    add(load(a + k), load(b + k));
  add(loadRest(a + k, count - k), loadRest(b + k, count - k));
  return total(sums);
}

}  // namespace zarnet
