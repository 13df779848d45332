#include "platform/VectorMath.h"

#include <cstddef>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

namespace zarnet {

// Small integers, whose 32-bit sums are exact in any order. Each row is as long as its last term needs, so
// that a checked build notices any read beyond it.
TEST(VectorMath, SumsEveryTermOfAnyCountAndStrideOnce) {
  for (const std::int64_t stride : {1, 2, 8}) {
    for (std::int64_t count = 0; count <= 70; ++count) {
      const auto length = static_cast<std::size_t>(count == 0 ? 0 : (count - 1) * stride + 1);
      std::vector<float> a(length);
      std::vector<float> b(length);
      float squares = 0;
      float products = 0;
      for (std::size_t i = 0; i < length; ++i) {
        a[i] = static_cast<float>(i % 31) - 15;
        b[i] = static_cast<float>(i % 23) + 1;
        if (static_cast<std::int64_t>(i) % stride != 0) continue;
        squares += a[i] * a[i];
        products += a[i] * b[i];
      }
      EXPECT_EQ(sumOfSquares(a.data(), stride, count), squares) << count << " at stride " << stride;
      EXPECT_EQ(dotProduct(a.data(), b.data(), stride, count), products) << count << " at stride " << stride;
    }
  }
}

TEST(VectorMath, FindsTheLargestMagnitudeWhereverItStands) {
  EXPECT_EQ(maximumMagnitude(nullptr, 0), 0.0f);
  for (std::size_t count = 1; count <= 40; ++count) {
    for (std::size_t place = 0; place < count; ++place) {
      std::vector<float> samples(count, 0.5f);
      samples[place] = place % 2 == 0 ? -0.8f : 0.8f;
      EXPECT_EQ(maximumMagnitude(samples.data(), static_cast<std::int64_t>(count)), 0.8f)
          << place << " of " << count;
    }
  }
  const float smallest = std::numeric_limits<float>::denorm_min();
  const float samples[] = {0, -smallest, 0};
  EXPECT_EQ(maximumMagnitude(samples, 3), smallest);
}

}  // namespace zarnet
