#include "audio/RawSamples.h"
#include "platform/VectorMath.h"
#include "tests/support/LoadedSignal.h"
#include "tests/support/Programs.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/Signals.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zarnet::test {

namespace {

/// Runs `vorbis-tool` with these arguments, words of a shell, in a folder.
ProgramResult vorbisTool(const ScratchFolder& folder, const std::string& arguments,
                         const std::string& before = "") {
  return runProgram({"sh", "-c", "cd \"$0\"; " + before + "\"$1\" " + arguments, folder.path().string(),
                     resource("vorbis-tool").string()});
}

}  // namespace

TEST(VorbisTool, KeepsLengthAndPositionNearTheNominalBitrate) {
  const ScratchFolder scratch;
  const Signal original = music(48000, 2, 6.123);
  loaded(original)->writeRaw(scratch / "in");
  for (const int kbps : {64, 128, 320}) {
    EXPECT_EQ(vorbisTool(scratch, "encode in ogg " + std::to_string(kbps)).status, 0);
    EXPECT_EQ(vorbisTool(scratch, "decode ogg out").status, 0);
    rawPCMToCAF(scratch / "out", scratch / "out.caf");
    const Signal decoded = readSignal(scratch / "out.caf");
    ASSERT_EQ(decoded.count(), original.count());
    for (const std::size_t channel : {0, 1})
      EXPECT_EQ(lag(original.planes[channel], decoded.planes[channel]), 0) << kbps;
    const double bits = 8 * static_cast<double>(std::filesystem::file_size(scratch / "ogg"));
    EXPECT_NEAR(bits / 6.123 / (kbps * 1000), 1, 0.25) << kbps;
  }
}

TEST(VorbisTool, RefusesWhatItCannotDoWithOneLineAndLeavesNoOutput) {
  const ScratchFolder scratch;
  loaded(music(48000, 2, 2))->writeRaw(scratch / "in");
  EXPECT_EQ(vorbisTool(scratch, "encode in good 128").status, 0);
  const std::string good = readFile(scratch / "good");
  std::string flipped = good;
  flipped[flipped.size() / 2] ^= 1;
  writeFile(scratch / "flipped", flipped);
  writeFile(scratch / "headers", good.substr(0, 2000));
  writeFile(scratch / "hole", good.substr(0, 10'000) + good.substr(20'000));
  writeFile(scratch / "odd", std::string(80'004, '\0'));
  runScript(scratch.path(),
            "ffmpeg -f lavfi -i sine -ac 2 -c:a libvorbis -t 1 44.ogg; cat good 44.ogg >chained");
  const std::pair<std::string, std::string> cases[] = {
      {"", "usage: vorbis-tool"},
      {"encode", "usage: vorbis-tool"},
      {"decode good out 128", "usage: vorbis-tool"},
      {"encode in out -128", "The bitrate is not a whole number from 1 to 1000 kbps."},
      {"encode in out 99999999999999999999", "The bitrate is not a whole number from 1 to 1000 kbps."},
      {"encode in out 1000", "Ogg Vorbis has no mode for 1000 kbps."},
      {"encode odd out 128", "“odd” does not hold a whole number of frames."},
      {"encode in ./in 128", "“in” is both the input and the output."},
      {"decode 'line\nfeed' out", "“line feed” could not be opened: No such file or directory."},
      {"decode in out", "“in” is not an Ogg Vorbis file."},
      {"decode headers out", "“headers” is not an Ogg Vorbis file."},
      {"decode hole out", "“hole” is damaged or incomplete."},
      {"decode flipped out", "“flipped” is damaged or incomplete."},
      {"decode chained out", "“chained” is not 48 kHz stereo."},
      {"encode in /dev/full 128", "“full” could not be written: No space left on device."},
  };
  const auto expectFailure = [&](const ProgramResult& result, const std::string& message) {
    EXPECT_EQ(result.status, 1) << message;
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.errors, testing::HasSubstr(message));
    EXPECT_EQ(std::ranges::count(result.errors, '\n'), 1) << result.errors;
    EXPECT_FALSE(std::filesystem::exists(scratch / "out")) << message;
  };
  for (const auto& [arguments, message] : cases)
    expectFailure(vorbisTool(scratch, arguments), message);
  EXPECT_EQ(std::filesystem::file_size(scratch / "in"), 96'000u * 8);
  EXPECT_TRUE(std::filesystem::exists("/dev/full"));
  for (const char* arguments : {"encode in out 320", "decode good out"})
    expectFailure(vorbisTool(scratch, arguments, "ulimit -f 8; "),
                  "“out” could not be written: File too large.");
}

TEST(Lame, KeepsTheLevelOfFloatingPointSamples) {
  const ScratchFolder scratch;
  for (const double level : {0.01, 0.9}) {
    writeWave(scratch / "in.wav", sine(48000, 2, 48'000, 997, level));
    runScript(scratch.path(), "lame=" + resource("lame").string() + R"(
      $lame --silent --noreplaygain --cbr -b 320 --resample 48 -q 2 in.wav a.mp3
      $lame --silent --decode a.mp3 out.wav)");
    const Signal heard = readSignal(scratch / "out.wav");
    ASSERT_EQ(heard.count(), 48'000);
    EXPECT_NEAR(maximumMagnitude(heard.planes[0].data() + 10'000, 28'000), level, 0.01 * level);
  }
}

}  // namespace zarnet::test
