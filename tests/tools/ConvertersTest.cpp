// The programs that convert, encode and decode: afconvert, vorbis-tool and lame.

#include "audio/RawSamples.h"
#include "audio/VectorMath.h"
#include "tests/support/Programs.h"
#include "tests/support/Signals.h"
#include "tools/support/Tool.h"

#include <cmath>
#include <limits>

#include <gmock/gmock.h>

namespace zarnet::test {

namespace {

const std::string toWave = "-f WAVE -d LEF32@48000 -c 2 -r 127";
const std::string toCaf = "-f caff -d LEF32@48000 -c 2";

std::string toAac(int kbps) {
  return "-f m4af -d aac -b " + std::to_string(kbps * 1000) + " -q 127 -s 0";
}

/// Runs `afconvert` with these options, words of a shell, after a command of the shell.
ProgramResult afconvert(const std::filesystem::path& input, const std::filesystem::path& output,
                        const std::string& options, const std::string& before = "") {
  return runProgram({"sh", "-c", before + "\"$@\" " + options, "sh", resource("afconvert").string(),
                     input.string(), output.string()});
}

/// Runs a program of the resources with these arguments, words of a shell, in a folder, after a command of
/// the shell.
ProgramResult run(const std::string& program, const ScratchFolder& folder, const std::string& arguments,
                  const std::string& before = "") {
  return runProgram({"sh", "-c", "cd \"$0\"; " + before + "\"$1\" " + arguments, folder.path().string(),
                     resource(program).string()});
}

/// What a signal becomes.
Signal converted(const Signal& signal, const std::string& options, SampleType type = SampleType::float32) {
  const ScratchFolder scratch;
  const auto input = writeWave(scratch / "in", signal, type);
  const ProgramResult result = afconvert(input, scratch / "out", options);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output + result.errors, "");
  return readSignal(scratch / "out");
}

void expectFailure(const ProgramResult& result, const std::string& message) {
  EXPECT_EQ(result.status, 1) << message;
  EXPECT_EQ(result.output, "");
  EXPECT_THAT(result.errors, testing::HasSubstr(message));
  EXPECT_EQ(std::ranges::count(result.errors, '\n'), 1) << result.errors;
}

}  // namespace

TEST(Afconvert, KeepsEverySampleAt48kHzAndDoublesMonoAtUnityGain) {
  const Signal exact = counting(48000, 100'003);
  Signal wild = noise(48000, 2, 50'001, 4, 1);
  wild.planes[1][8] = 1e-42f;
  const Signal mono{48000, {exact.planes[0]}};
  for (const std::string& options : {toWave, toCaf}) {
    EXPECT_EQ(converted(exact, options, SampleType::int24).planes, exact.planes);
    EXPECT_EQ(converted(wild, options).planes, wild.planes);
    EXPECT_EQ(converted(mono, options).planes, std::vector(2, mono.planes[0]));
  }
}

TEST(Afconvert, GivesTheRoundedNumberOfFramesAtEveryRate) {
  for (const int rate : {8000, 16000, 44100, 96000}) {
    for (const int frames : {0, 1, 60'001}) {
      const Signal output = converted(noise(rate, 1, frames, 0.5, 3), rate == 16000 ? toCaf : toWave);
      EXPECT_NEAR(static_cast<double>(output.count()), std::round(frames * 48000.0 / rate), 1) << rate;
    }
  }
}

// Against the ideal sine at the output rate, so that gain, position in time and every distortion count.
TEST(Afconvert, KeepsASineInItsPlaceAndShape) {
  const std::tuple<std::string, double, double, double> table[] = {
      {toWave, 44100, 997, 130},
      {toWave, 44100, 19'000, 130},
      {toWave, 96000, 19'000, 130},
      {toCaf, 16000, 7'000, 110},
  };
  for (const auto& [options, rate, frequency, leastDecibels] : table) {
    const double amplitude = std::pow(10, -1 / 20.0);
    const Signal source = sine(rate, 2, static_cast<std::int64_t>(rate), frequency, amplitude);
    const auto ideal = sine(48000, 1, 48'000, frequency, amplitude).planes[0];
    for (const auto& plane : converted(source, options).planes) {
      double signal = 0;
      double error = 0;
      // A sine that starts and ends is no sine there.
      for (std::size_t i = 4800; i + 4800 < plane.size(); ++i) {
        signal += double{ideal[i]} * ideal[i];
        error += std::pow(double{plane[i]} - ideal[i], 2);
      }
      EXPECT_GT(10 * std::log10(signal / error), leastDecibels) << frequency << " Hz from " << rate << " Hz";
    }
  }
}

TEST(Afconvert, EncodesAacNearTheNominalBitrateAndKeepsRateChannelsLengthAndPosition) {
  const struct {
    double rate;
    int channels;
    std::int64_t frames;
    int kbps;
    double least;  ///< of the nominal bitrate; 0 where it says nothing
  } table[] = {
      {48000, 2, 960'000, 64, 0.95},
      // The encoder would go furthest beyond it here.
      {48000, 1, 960'000, 192, 0.95},
      {48000, 2, 960'000, 320, 0.7},
      {44100, 1, 50'001, 96, 0},
      {48000, 2, 1025, 192, 0},
  };
  const ScratchFolder scratch;
  for (const auto& [rate, channels, frames, kbps, least] : table) {
    SCOPED_TRACE(std::to_string(frames) + " frames at " + std::to_string(kbps));
    Signal source = music(rate, channels, static_cast<double>(frames) / rate + 0.1, 5);
    for (auto& plane : source.planes)
      plane.resize(static_cast<std::size_t>(frames));
    const auto encoded = scratch / "a.m4a";
    ASSERT_EQ(afconvert(writeWave(scratch / "in.wav", source), encoded, toAac(kbps)).status, 0);
    const Signal decoded = readSignal(encoded);
    EXPECT_EQ(decoded.rate, rate);
    ASSERT_EQ(decoded.planes.size(), source.planes.size());
    EXPECT_EQ(decoded.count(), frames);
    EXPECT_EQ(frames < 10'000 ? 0 : lag(source.planes[0], decoded.planes[0]), 0);
    if (least == 0) continue;
    const double bits = 8 * static_cast<double>(std::filesystem::file_size(encoded));
    const double factor = bits / (static_cast<double>(frames) / rate) / (kbps * 1000);
    EXPECT_GT(factor, least);
    EXPECT_LT(factor, 1.05);
  }
}

TEST(Afconvert, RefusesWhatItCannotDoAndLeavesTheOutputAlone) {
  const ScratchFolder scratch;
  const auto sound = writeWave(scratch / "in.wav", counting(48000, 1000));
  writeFile(scratch / "text.wav", std::string(5000, 'x'));
  writeWave(scratch / "three.wav", noise(48000, 3, 100, 0.5, 1));
  writeWave(scratch / "mono.wav", noise(48000, 1, 100, 0.5, 1));
  writeWave(scratch / "empty.wav", noise(48000, 2, 0, 0.5, 1));
  const auto earlier = writeFile(scratch / "earlier", "kept");
  for (const std::string options :
       {"", "-f", "-f WAVE -d LEF32@44100 -c 2 -r 127", "-f caff -d LEF32@48000 -c 2 -q 127",
        "-f m4af -d aac -b 128k -q 127 -s 0", "-f m4af -d aac -b 99999999999999999999 -q 127 -s 0"})
    expectFailure(afconvert(sound, earlier, options), "usage: afconvert IN OUT -f WAVE");
  const std::tuple<std::filesystem::path, std::filesystem::path, std::string, std::string> cases[] = {
      {"text.wav", earlier, toCaf, "“text.wav” could not be opened"},
      {"three.wav", earlier, toWave, "“three.wav” could not be converted: It has 3 channels"},
      {"mono.wav", earlier, toAac(320), "AAC holds at most 288000 bits per second"},
      {"empty.wav", earlier, toAac(64), "“empty.wav” could not be converted: It holds no sound."},
      {"in.wav", scratch / "." / "in.wav", toAac(64), "“in.wav” is both the input and the output."},
  };
  for (const auto& [input, output, options, message] : cases)
    expectFailure(afconvert(scratch.path() / input, output, options), message);
  EXPECT_EQ(readFile(earlier), "kept");
  EXPECT_EQ(readSignal(sound).count(), 1000);
}

TEST(Afconvert, RemovesAnOutputThatItCouldNotComplete) {
  const ScratchFolder scratch;
  // Long enough that reading and resampling are still under way when writing fails.
  const auto input = writeWave(scratch / "in.wav", noise(44100, 2, 1'000'000, 0.5, 1), SampleType::int16);
  for (const std::string& options : {toWave, toCaf, toAac(256)}) {
    expectFailure(afconvert(input, scratch / "out", options, "ulimit -f 64; "),
                  "“out” could not be written: File too large.");
    EXPECT_FALSE(std::filesystem::exists(scratch / "out"));
    expectFailure(afconvert(input, "/dev/full", options), "No space left on device");
    for (const float wild : {std::nanf(""), -std::numeric_limits<float>::infinity()}) {
      Signal source = noise(44100, 2, 50'000, 0.5, 1);
      source.planes[1][40'000] = wild;
      expectFailure(afconvert(writeWave(scratch / "wild.wav", source), scratch / "out", options),
                    "“wild.wav” could not be converted: It holds samples that are not finite numbers.");
      EXPECT_FALSE(std::filesystem::exists(scratch / "out"));
    }
  }
}

TEST(VorbisTool, KeepsLengthAndPositionNearTheNominalBitrate) {
  const ScratchFolder scratch;
  const Signal original = music(48000, 2, 6.123);
  loaded(original)->writeRaw(scratch / "in");
  for (const int kbps : {64, 128, 320}) {
    EXPECT_EQ(run("vorbis-tool", scratch, "encode in ogg " + std::to_string(kbps)).status, 0);
    EXPECT_EQ(run("vorbis-tool", scratch, "decode ogg out").status, 0);
    rawPCMToCAF(scratch / "out", scratch / "out.caf");
    const Signal decoded = readSignal(scratch / "out.caf");
    ASSERT_EQ(decoded.count(), original.count());
    EXPECT_EQ(lag(original.planes[1], decoded.planes[1]), 0) << kbps;
    const double bits = 8 * static_cast<double>(std::filesystem::file_size(scratch / "ogg"));
    EXPECT_NEAR(bits / 6.123 / (kbps * 1000), 1, 0.25) << kbps;
  }
}

TEST(VorbisTool, RefusesWhatItCannotDoWithOneLineAndLeavesNoOutput) {
  const ScratchFolder scratch;
  loaded(music(48000, 2, 2))->writeRaw(scratch / "in");
  EXPECT_EQ(run("vorbis-tool", scratch, "encode in good 128").status, 0);
  const std::string good = readFile(scratch / "good");
  writeFile(scratch / "hole", good.substr(0, 10'000) + good.substr(20'000));
  writeFile(scratch / "odd", std::string(80'004, '\0'));
  const std::pair<std::string, std::string> cases[] = {
      {"", "usage: vorbis-tool"},
      {"decode good out 128", "usage: vorbis-tool"},
      {"encode in out 99999999999999999999", "The bitrate is not a whole number from 1 to 1000 kbps."},
      {"encode odd out 128", "“odd” does not hold a whole number of frames."},
      {"encode in ./in 128", "“in” is both the input and the output."},
      {"decode 'line\nfeed' out", "“line feed” could not be opened: No such file or directory."},
      {"decode in out", "“in” is not an Ogg Vorbis file."},
      {"decode hole out", "“hole” is damaged or incomplete."},
  };
  for (const auto& [arguments, message] : cases) {
    expectFailure(run("vorbis-tool", scratch, arguments), message);
    EXPECT_FALSE(std::filesystem::exists(scratch / "out")) << message;
  }
  EXPECT_EQ(std::filesystem::file_size(scratch / "in"), 96'000u * 8);
  for (const char* arguments : {"encode in out 320", "decode good out"}) {
    expectFailure(run("vorbis-tool", scratch, arguments, "ulimit -f 8; "),
                  "“out” could not be written: File too large.");
    EXPECT_FALSE(std::filesystem::exists(scratch / "out")) << arguments;
  }
}

TEST(Lame, KeepsTheLevelOfFloatingPointSamples) {
  const ScratchFolder scratch;
  writeWave(scratch / "in.wav", sine(48000, 2, 48'000, 997, 0.01));
  runScript(scratch.path(), "lame=" + resource("lame").string() + R"(
    $lame --silent --noreplaygain --cbr -b 320 --resample 48 -q 2 in.wav a.mp3
    $lame --silent --decode a.mp3 out.wav)");
  const Signal heard = readSignal(scratch / "out.wav");
  ASSERT_EQ(heard.count(), 48'000);
  EXPECT_NEAR(maximumMagnitude(heard.planes[0].data() + 10'000, 28'000), 0.01, 0.0001);
}

TEST(Lame, TellsWhichFileCouldNotBeWrittenAndWhy) {
  const ScratchFolder scratch;
  writeWave(scratch / "in.wav", noise(48000, 2, 96'000, 0.3, 1));
  const std::string options = "--silent --noreplaygain --cbr -b 320 --resample 48 -q 2 ";
  EXPECT_EQ(run("lame", scratch, options + "in.wav good.mp3").status, 0);
  const std::tuple<std::string, std::string, std::string> cases[] = {
      {options + "in.wav /dev/full", "", "“full” could not be written: No space left on device."},
      {"--silent --decode good.mp3 /dev/full", "", "“full” could not be written: No space left on device."},
      {options + "in.wav out", "ulimit -f 8; ", "“out” could not be written: File too large."},
      {options + "in.wav no/out", "", "“out” could not be opened: No such file or directory."},
      {options + "missing out", "", "“missing” could not be opened: No such file or directory."},
      {options + "in.wav in.wav", "", "“in.wav” is both the input and the output."},
  };
  for (const auto& [arguments, before, message] : cases) {
    expectFailure(run("lame", scratch, arguments, before), message);
    EXPECT_FALSE(std::filesystem::exists(scratch / "out")) << arguments;
  }
}

TEST(Converter, TellsThatMemoryRanOut) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(runConverter([] { throw std::bad_alloc(); }), 1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "There is not enough memory.\n");
}

}  // namespace zarnet::test
