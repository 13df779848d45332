#include "platform/VectorMath.h"
#include "tests/support/Programs.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/Signals.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zarnet::test {

namespace {

using testing::HasSubstr;

std::filesystem::path writeRaw(const std::filesystem::path& path, const Signal& signal) {
  std::vector<float> frames;
  for (std::size_t i = 0; i < static_cast<std::size_t>(signal.count()); ++i)
    frames.insert(frames.end(), {signal.planes[0][i], signal.planes[1][i]});
  return writeFile(path, {reinterpret_cast<const char*>(frames.data()), frames.size() * sizeof(float)});
}

Signal readRaw(const std::filesystem::path& path) {
  const std::string bytes = readFile(path);
  std::vector<float> samples(bytes.size() / sizeof(float));
  std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(float));
  Signal signal{48000, {{}, {}}};
  for (std::size_t i = 0; i < samples.size(); ++i)
    signal.planes[i % 2].push_back(samples[i]);
  return signal;
}

ProgramResult vorbisTool(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), resource("vorbis-tool").string());
  return runProgram(arguments);
}

void encode(const std::filesystem::path& input, const std::filesystem::path& output, int kbps) {
  const ProgramResult result = vorbisTool({"encode", input.string(), output.string(), std::to_string(kbps)});
  EXPECT_EQ(result.status, 0) << result.errors;
}

void decode(const std::filesystem::path& input, const std::filesystem::path& output) {
  const ProgramResult result = vorbisTool({"decode", input.string(), output.string()});
  EXPECT_EQ(result.status, 0) << result.errors;
}

/// Normalised correlation of `a` with `b` moved `lag` frames to the left. Requires: equal sizes.
double correlation(const std::vector<float>& a, const std::vector<float>& b, int lag) {
  const auto from = static_cast<std::size_t>(std::max(0, -lag));
  const float* first = a.data() + from;
  const float* second = b.data() + from + lag;
  const auto count = static_cast<std::int64_t>(a.size()) - std::abs(lag);
  return dotProduct(first, second, 1, count) /
         std::sqrt(double{sumOfSquares(first, 1, count)} * sumOfSquares(second, 1, count));
}

class VorbisRoundTrip : public testing::TestWithParam<int> {};

TEST_P(VorbisRoundTrip, keepsLengthAlignmentAndSoundNearTheNominalBitrate) {
  const ScratchFolder scratch;
  const Signal original = music(48000, 2, 6.123);
  encode(writeRaw(scratch / "in.f32", original), scratch / "a.ogg", GetParam());
  decode(scratch / "a.ogg", scratch / "out.f32");
  const Signal decoded = readRaw(scratch / "out.f32");

  ASSERT_EQ(decoded.count(), original.count());
  for (std::size_t channel : {0, 1}) {
    const auto& before = original.planes[channel];
    const auto& after = decoded.planes[channel];
    const double match = correlation(before, after, 0);
    EXPECT_GT(match, 0.9);
    for (int lag : {-2, -1, 1, 2})
      EXPECT_LT(correlation(before, after, lag), match) << lag;
  }
  const double seconds = static_cast<double>(original.count()) / 48000;
  const double kbps = static_cast<double>(std::filesystem::file_size(scratch / "a.ogg")) * 8e-3 / seconds;
  EXPECT_GT(kbps, 0.75 * GetParam());
  EXPECT_LT(kbps, 1.25 * GetParam());
}

INSTANTIATE_TEST_SUITE_P(bitrates, VorbisRoundTrip, testing::Values(64, 128, 320));

TEST(VorbisTool, refusesWhatItCannotDoWithOneLineAndLeavesNoOutput) {
  const ScratchFolder scratch;
  const auto at = [&](const std::string& name) { return (scratch / name).string(); };
  writeRaw(at("in.f32"), music(48000, 2, 2));
  encode(at("in.f32"), at("good.ogg"), 128);
  const std::string good = readFile(at("good.ogg"));
  std::string flipped = good;
  flipped[flipped.size() / 2] ^= 1;
  writeFile(at("flipped.ogg"), flipped);
  writeFile(at("headers.ogg"), good.substr(0, 2000));
  writeFile(at("hole.ogg"), good.substr(0, 10'000) + good.substr(20'000));
  writeFile(at("garbage.ogg"), std::string(100'000, 'O'));
  writeFile(at("odd.f32"), std::string(80'004, '\0'));
  ffmpeg({"-f", "lavfi", "-i", "sine", "-ac", "2", "-c:a", "libvorbis", "-t", "1", at("44.ogg")});
  writeFile(at("chained.ogg"), good + readFile(at("44.ogg")));
  const std::string out = at("out");
  const std::string usage = "usage: vorbis-tool";
  const std::string bitrate = "The bitrate is not a whole number from 1 to 1000 kbps.";
  const std::string damaged = " is damaged or incomplete.";
  const std::string foreign = " is not an Ogg Vorbis file.";

  for (const auto& [arguments, message] : std::vector<std::pair<std::vector<std::string>, std::string>>{
           {{}, usage},
           {{"encode"}, usage},
           {{"decode", at("good.ogg"), out, "128"}, usage},
           {{"encode", at("in.f32"), out, "-128"}, bitrate},
           {{"encode", at("in.f32"), out, "99999999999999999999"}, bitrate},
           {{"encode", at("in.f32"), out, "1000"}, "Ogg Vorbis has no mode for 1000 kbps."},
           {{"encode", at("odd.f32"), out, "128"}, "“odd.f32” does not hold a whole number of frames."},
           {{"encode", at("missing"), out, "128"},
            "“missing” could not be opened: No such file or directory."},
           {{"encode", at("in.f32"), at("./in.f32"), "128"}, "The input and the output are the same file."},
           {{"decode", at("line\nfeed"), out}, "“line feed” could not be opened: No such file or directory."},
           {{"decode", at("garbage.ogg"), out}, "“garbage.ogg”" + foreign},
           {{"decode", at("headers.ogg"), out}, "“headers.ogg”" + foreign},
           {{"decode", at("hole.ogg"), out}, "“hole.ogg”" + damaged},
           {{"decode", at("flipped.ogg"), out}, "“flipped.ogg”" + damaged},
           {{"decode", at("chained.ogg"), out}, "“chained.ogg” is not 48 kHz stereo."},
       }) {
    const ProgramResult result = vorbisTool(arguments);
    EXPECT_EQ(result.status, 1) << testing::PrintToString(arguments);
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.errors, HasSubstr(message));
    EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << result.errors;
    EXPECT_FALSE(std::filesystem::exists(out)) << testing::PrintToString(arguments);
  }
  EXPECT_EQ(std::filesystem::file_size(at("in.f32")), 96'000U * 8);
}

TEST(VorbisTool, reportsADiskThatIsFull) {
  const ScratchFolder scratch;
  const std::string raw = writeRaw(scratch / "in.f32", noise(48000, 2, 96'000, 0.5, 3)).string();
  const std::string ogg = (scratch / "a.ogg").string();
  encode(raw, ogg, 320);
  const std::string full = (scratch / "full").string();
  const std::string tool = resource("vorbis-tool").string();
  for (const std::vector<std::string>& call : {std::vector<std::string>{"encode", raw, full, "320"},
                                               std::vector<std::string>{"decode", ogg, full}}) {
    // A limit of eight blocks on what the shell's child may write.
    std::vector<std::string> limited = {"sh", "-c", "ulimit -f 8; exec \"$@\"", "sh", tool};
    limited.insert(limited.end(), call.begin(), call.end());
    const ProgramResult result = runProgram(limited);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "“full” could not be written: File too large.\n");
    EXPECT_FALSE(std::filesystem::exists(full));
  }
  EXPECT_THAT(vorbisTool({"decode", ogg, "/dev/full"}).errors, HasSubstr("No space left on device"));
  EXPECT_TRUE(std::filesystem::exists("/dev/full"));
}

#ifdef ZARNET_MEASURE_MEMORY
TEST(VorbisTool, needsLittleMemoryForALongSignal) {
  const ScratchFolder scratch;
  const std::string second = readFile(writeRaw(scratch / "second.f32", noise(48000, 2, 48'000, 0.2, 9)));
  std::string minute;
  for (int i = 0; i < 60; ++i)
    minute += second;
  const std::string raw = writeFile(scratch / "in.f32", minute).string();
  const std::string ogg = (scratch / "a.ogg").string();
  const std::string tool = resource("vorbis-tool").string();
  const std::string report = (scratch / "report").string();
  for (const std::vector<std::string>& call :
       {std::vector<std::string>{"encode", raw, ogg, "128"}, std::vector<std::string>{"decode", ogg, raw}}) {
    std::vector<std::string> measured = {"/usr/bin/time", "-f", "%M", "-o", report, tool};
    measured.insert(measured.end(), call.begin(), call.end());
    EXPECT_EQ(runProgram(measured).status, 0);
    EXPECT_LT(std::stol(readFile(report)), 16'000) << "KB for " << call[0];
  }
}
#endif

}  // namespace

}  // namespace zarnet::test
