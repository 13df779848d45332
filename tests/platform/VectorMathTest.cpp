#include "platform/VectorMath.h"

#include <algorithm>
#include <vector>

#include <gtest/gtest.h>

namespace zarnet {

// Sums of small integers, exact in any order. Each row is as long as its last term needs, so that a checked
// build notices any read beyond it.
TEST(VectorMath, CountsEveryTermOnce) {
  for (const std::int64_t stride : {1, 8}) {
    for (std::int64_t count = 1; count <= 70; ++count) {
      std::vector<float> row(static_cast<std::size_t>((count - 1) * stride + 1), 99);
      float sum = 0;
      for (std::int64_t i = 0; i < count; ++i) {
        const auto value = static_cast<float>(i % 31 - 15);
        row[static_cast<std::size_t>(i * stride)] = value;
        sum += value * value;
      }
      EXPECT_EQ(sumOfSquares(row.data(), stride, count), sum) << count << " at stride " << stride;
      EXPECT_EQ(dotProduct(row.data(), row.data(), stride, count), sum) << count << " at stride " << stride;
      for (float& sample : row) {
        std::ranges::fill(row, 0.5f);
        sample = -0.8f;
        EXPECT_EQ(maximumMagnitude(row.data(), static_cast<std::int64_t>(row.size())), 0.8f) << count;
      }
    }
  }
}

}  // namespace zarnet
