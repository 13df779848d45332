#include "platform/Text.h"
#include "tests/support/ScratchFolder.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace zarnet {

TEST(Text, ReplacesOnlyTheBytesOfAPathThatAreNoCharacter) {
  const std::string_view table[][2] = {
      {"Žluťoučký 👩‍👩‍👧", "Žluťoučký 👩‍👩‍👧"},
      {"\xE2\x82/x", "��/x"},                   // a character cut short
      {"\xC0\xAF", "��"},                       // an overlong form
      {"\xED\xA0\x80", "���"},                  // a surrogate
      {"\xF4\x90\x80\x80", "����"},             // beyond U+10FFFF
      {"\x80\xF4\x8F\xBF\xBF", "�\U0010FFFF"},  // a stray trail byte before the last character there is
  };
  for (const auto& [bytes, shown] : table)
    EXPECT_EQ(displayText(std::string(bytes)), shown);
}

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

TEST(Text, CountsTheTailOfAFileInCharactersAsAUserSeesThem) {
  const test::ScratchFolder scratch;
  const std::string combining = "e\u0301\u0323";
  const std::string hangul = "\u1112\u1161\u11AB";
  for (const std::string character :
       {"x", "€", "👩‍👩‍👧‍👦", "🇨🇿", "👋🏽", "\r\n", combining.c_str(), hangul.c_str()}) {
    std::string content;
    std::string expected;
    for (int count = 1; count <= 5000; ++count) {
      content += character;
      if (count <= 10) expected += character;
      if (count != 1 && count != 10 && count != 11 && count != 5000) continue;
      const auto file = test::writeFile(scratch / "log", content);
      EXPECT_EQ(tailOfTextFile(file, 10), expected) << count;
      EXPECT_EQ(tailOfTextFile(test::writeFile(file, content + "\xE2\x82"), 10), "") << count;
      EXPECT_EQ(tailOfTextFile(test::writeFile(file, "\xFF" + content), 10), "") << count;
    }
  }
}

}  // namespace zarnet
