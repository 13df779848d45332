#include "platform/Text.h"
#include "tests/support/ScratchFolder.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace zarnet {

namespace {

std::string repeated(const std::string& text, std::size_t times) {
  std::string result;
  for (std::size_t k = 0; k < times; ++k)
    result += text;
  return result;
}

}  // namespace

TEST(Text, ReplacesOnlyTheBytesOfAPathThatAreNoCharacter) {
  const std::string_view table[][2] = {
      {"", ""},
      {"plain", "plain"},
      {"Žluťoučký 👩‍👩‍👧", "Žluťoučký 👩‍👩‍👧"},
      {"a\xFF"
       "b",
       "a�b"},
      {"\xE2\x82", "��"},                       // a character cut short
      {"\xE2\x82/x", "��/x"},                   // and followed by something
      {"\xC0\xAF", "��"},                       // an overlong form
      {"\xED\xA0\x80", "���"},                  // a surrogate
      {"\xF4\x90\x80\x80", "����"},             // beyond U+10FFFF
      {"\x80\xF4\x8F\xBF\xBF", "�\U0010FFFF"},  // a stray trail byte before the last character there is
  };
  for (const auto& [bytes, shown] : table)
    EXPECT_EQ(displayText(std::string(bytes)), shown);
}

TEST(Text, FormatsNumbersAsPrintfDoes) {
  const auto printed = [](double value) {
    char text[64];
    std::snprintf(text, sizeof text, "%g", value);
    return std::string(text);
  };
  for (const double value : {0.0, -0.0, 44.1, 48.0, 22.05, 999999.5, 1e6, 1e-5, 0.0001, 123456.5, 5e-324,
                             HUGE_VAL, -HUGE_VAL, std::numeric_limits<double>::quiet_NaN()})
    EXPECT_EQ(formatG(value), printed(value));
  const std::uint32_t seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937_64 random(seed);
  for (int k = 0; k < 20'000; ++k) {
    const std::uint64_t bits = random();
    double value = 0;
    std::memcpy(&value, &bits, sizeof value);
    if (std::isnan(value)) continue;
    ASSERT_EQ(formatG(value), printed(value));
  }
}

TEST(Text, CountsTheTailOfAFileInCharactersAsAUserSeesThem) {
  const test::ScratchFolder scratch;
  const struct {
    const char* name;
    std::string character;
  } table[] = {
      {"one byte", "x"},
      {"three bytes", "€"},
      {"a letter with combining marks", "e\u0301\u0323"},
      {"a family", "👩‍👩‍👧‍👦"},
      {"a flag", "🇨🇿"},
      {"a waving hand with its skin colour", "👋🏽"},
      {"Hangul from parts", "\u1112\u1161\u11AB"},
      {"a line end of two bytes", "\r\n"},
      {"a zero byte", std::string(1, '\0')},
  };
  for (const auto& [name, character] : table) {
    for (const std::size_t count : {0u, 1u, 9u, 10u, 11u, 5000u}) {
      const auto file = test::writeFile(scratch / "log", repeated(character, count));
      EXPECT_EQ(tailOfTextFile(file, 10), repeated(character, count < 10 ? count : 10))
          << name << " × " << count;
    }
  }
}

TEST(Text, TailOfAFileThatIsNotUTF8AnywhereIsEmpty) {
  const test::ScratchFolder scratch;
  const std::string filler = repeated("€", 100'000);
  for (const std::string flaw : {"\xFF", "\xE2\x82", "\xC0\x80", "\xED\xA0\x80"}) {
    const std::string end = filler + flaw;
    for (const std::string& content : {flaw, flaw + filler, end, end + filler})
      EXPECT_EQ(tailOfTextFile(test::writeFile(scratch / "log", content), 650), "") << content.size();
  }
  EXPECT_EQ(tailOfTextFile(scratch / "missing", 650), "");
  EXPECT_EQ(tailOfTextFile(scratch.path(), 650), "");
}

}  // namespace zarnet
