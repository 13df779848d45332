#include "tests/support/Failures.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/Signals.h"
#include "tests/tools/Afconvert.h"
#include "tools/afconvert/Options.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zarnet::test {

namespace {

using testing::HasSubstr;
using testing::StartsWith;

/// A copy in which the word at `index` is another one.
Words replaced(Words words, std::size_t index, const std::string& word) {
  words.at(index) = word;
  return words;
}

Words withoutLast(Words words) {
  words.pop_back();
  return words;
}

std::vector<std::string_view> parsedLine(const Words& options) {
  std::vector<std::string_view> line = {"in", "out"};
  line.insert(line.end(), options.begin(), options.end());
  return line;
}

/// Runs a command line that must fail with one line on standard error alone, and returns that line.
std::string failure(const Words& line) {
  const ProgramResult result = runProgram(line);
  EXPECT_EQ(result.status, 1) << testing::PrintToString(line);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << result.errors;
  return result.errors;
}

}  // namespace

TEST(AfconvertOptions, OfAnyOtherFormGetAUsageLine) {
  const Words wrongOptions[] = {
      {},
      replaced(toWave, 1, "wave"),
      replaced(toWave, 3, "LEF32@44100"),
      replaced(toWave, 5, "1"),
      replaced(toWave, 7, "126"),
      withoutLast(toWave),
      replaced(toCaf, 0, "-F"),
      {"-f", "caff", "-d", "LEF32@48000", "-c", "2", "-q", "127"},
      replaced(toAac(128), 3, "alac"),
      replaced(toAac(128), 5, "128k"),
      replaced(toAac(128), 5, "+128000"),
      replaced(toAac(128), 5, "7999"),
      replaced(toAac(128), 5, "576001"),
      replaced(toAac(128), 5, "99999999999999999999"),
  };
  for (const Words& options : wrongOptions) {
    EXPECT_THAT(failureOf<std::invalid_argument>([&] { parseOptions(parsedLine(options)); }),
                StartsWith("usage: afconvert IN OUT -f WAVE"))
        << testing::PrintToString(options);
  }
  const std::string program = resource("afconvert").string();
  for (const Words& line : {Words{program}, Words{program, "in"}, afconvertLine("in", "out", {"-f"})})
    EXPECT_THAT(failure(line), StartsWith("usage: afconvert "));
}

TEST(AfconvertFailure, NamesTheFileAndTheReasonAndLeavesTheOutputAlone) {
  const ScratchFolder scratch;
  const auto text = writeFile(scratch / "text.wav", std::string(5000, 'x'));
  const auto music = writeWave(scratch / "in.wav", counting(48000, 1000));
  const auto threeChannels = writeWave(scratch / "three.wav", noise(48000, 3, 100, 0.5, 1));
  const auto highRate = writeWave(scratch / "high.wav", noise(192000, 2, 100, 0.5, 1));
  const auto mono = writeWave(scratch / "mono.wav", noise(48000, 1, 100, 0.5, 1));
  const auto empty = writeWave(scratch / "empty.wav", Signal{48000, {{}, {}}});
  const auto earlier = writeFile(scratch / "earlier", "kept");
  struct Case {
    std::filesystem::path input;
    std::filesystem::path output;
    Words options;
    std::string message;
  };
  const Case cases[] = {
      {scratch / "no.wav", earlier, toWave, "“no.wav” could not be opened: No such file or directory"},
      {scratch.path(), earlier, toWave, "could not be opened: Is a directory"},
      {text, earlier, toCaf, "“text.wav” could not be opened"},
      {threeChannels, earlier, toWave, "“three.wav” could not be converted: It has 3 channels"},
      {highRate, earlier, toAac(128), "AAC knows no sample rate of 192000 Hz."},
      {mono, earlier, toAac(320), "AAC holds at most 288000 bits per second"},
      {empty, earlier, toAac(64), "“empty.wav” could not be converted: It holds no sound."},
      {music, scratch / "." / "in.wav", toAac(64), "“in.wav” is both the input and the output."},
      {music, scratch / "none" / "a", toAac(64), "“a” could not be opened: No such file or directory"},
      {music, scratch.path(), toAac(64), "could not be opened: Is a directory"},
  };
  for (const auto& [input, output, options, message] : cases)
    EXPECT_THAT(failure(afconvertLine(input, output, options)), HasSubstr(message));
  EXPECT_EQ(readFile(earlier), "kept");
  EXPECT_EQ(readSignal(music).count(), 1000);
}

TEST(AfconvertFailure, RemovesAnOutputThatItCouldNotComplete) {
  const ScratchFolder scratch;
  const auto output = scratch / "out";
  // Long enough that reading and resampling are still under way when writing fails.
  const auto input = writeWave(scratch / "in.wav", noise(44100, 2, 1'000'000, 0.5, 1), SampleType::int16);
  for (const Words& options : {toWave, toCaf, toAac(256)}) {
    // Not even room for a header, then for a part. The limit holds for a message in a file as well, so that
    // goes through a pipe.
    for (const std::string limit : {"trap '' XFSZ; ulimit -f 0", "ulimit -f 64"}) {
      Words line = afconvertLine(input, output, options);
      const std::string script = "{ " + limit + "; \"$@\"; } 2>&1 | cat >&2";
      line.insert(line.begin(), {"bash", "-o", "pipefail", "-c", script, "bash"});
      EXPECT_EQ(failure(line), "“out” could not be written: File too large.\n");
      EXPECT_FALSE(std::filesystem::exists(output));
    }
    EXPECT_THAT(failure(afconvertLine(input, "/dev/full", options)), HasSubstr("No space left on device"));
    EXPECT_TRUE(std::filesystem::exists("/dev/full"));
  }
}

}  // namespace zarnet::test
