#include "platform/Text.h"

#include <bit>
#include <cmath>
#include <cstdio>
#include <random>

#include <gtest/gtest.h>

namespace zarnet {

TEST(Text, FormatsNumbersAsPrintfDoes) {
  std::mt19937_64 random(1);
  for (double value : {0.0, -0.0, 44.1, 22.05, 999999.5, 1e6, 1e-5, 0.0001, HUGE_VAL}) {
    for (int k = 0; k < 2'000; ++k, value = std::bit_cast<double>(random())) {
      char printed[64];
      std::snprintf(printed, sizeof printed, "%g", value);
      ASSERT_TRUE(std::isnan(value) || formatG(value) == printed) << printed;
    }
  }
}

TEST(Text, ReplacesOnlyTheBytesOfAPathThatAreNoCharacter) {
  EXPECT_EQ(displayText("Žluťoučký 👩‍👩‍👧/a\xE2\x82/\xED\xA0\x80\xF4\x8F\xBF\xBF"),
            "Žluťoučký 👩‍👩‍👧/a��/���\U0010FFFF");
}

}  // namespace zarnet
