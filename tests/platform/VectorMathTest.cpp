#include "platform/VectorMath.h"

#include <gtest/gtest.h>

namespace zarnet {

TEST(VectorMath, FindsTheLargestMagnitudeWhereverItStands) {
  for (std::size_t count = 1; count <= 40; ++count) {
    for (std::size_t place = 0; place < count; ++place) {
      std::vector<float> samples(count, 0.5f);
      samples[place] = place % 2 == 0 ? -0.8f : 0.8f;
      EXPECT_EQ(maximumMagnitude(samples.data(), static_cast<std::int64_t>(count)), 0.8f) << place;
    }
  }
}

}  // namespace zarnet
