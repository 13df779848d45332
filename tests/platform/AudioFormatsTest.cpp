// What the reader makes of whole files as real encoders write them.

#include "platform/AudioFileReader.h"
#include "tests/support/Programs.h"
#include "tests/support/ReadSignal.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/Signals.h"
#include "tests/support/TagBytes.h"

#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace zarnet::test {

namespace {

constexpr std::int64_t count = 50'021;
constexpr std::uint32_t pcm = fourCharacterCode("lpcm");
constexpr std::uint32_t flac = fourCharacterCode("flac");
constexpr std::uint32_t alac = fourCharacterCode("alac");

/// Noise in whole steps of a depth, which every depth from there on stores exactly.
Signal steps(int bits, std::int64_t frames = count) {
  Signal signal = noise(48000, 2, frames, 0.999, static_cast<std::uint32_t>(bits));
  for (auto& plane : signal.planes) {
    for (float& sample : plane)
      sample = std::ldexp(std::floor(std::ldexp(sample, bits - 1)), 1 - bits);
  }
  return signal;
}

struct Form {
  std::string name;
  std::vector<std::string> options;
  std::uint32_t formatID;
  std::uint32_t bits;
};

/// Makes every form of one source in a single run of ffmpeg.
void makeForms(const ScratchFolder& scratch, const Signal& source, const std::vector<Form>& forms) {
  std::vector<std::string> arguments = {
      "-i", writeWave(scratch / "source.wav", source, SampleType::int24).string()};
  for (const Form& form : forms) {
    arguments.insert(arguments.end(), {"-c:a"});
    arguments.insert(arguments.end(), form.options.begin(), form.options.end());
    arguments.push_back((scratch / form.name).string());
  }
  ffmpeg(arguments);
}

/// Overwrites bytes of a file behind the first occurrence of a mark.
void patch(const std::filesystem::path& path, const std::string& mark, std::size_t offset,
           const std::string& bytes) {
  std::string content = readFile(path);
  const std::size_t found = content.find(mark);
  ASSERT_NE(found, std::string::npos) << mark;
  writeFile(path, content.replace(found + mark.size() + offset, bytes.size(), bytes));
}

}  // namespace

TEST(AudioFormats, EverySampleOfEveryLosslessFormArrivesExactly) {
  const struct {
    int sourceBits;
    std::vector<Form> forms;
  } cases[] = {
      {8, {{"u8.wav", {"pcm_u8"}, pcm, 8}, {"s8.aiff", {"pcm_s8"}, pcm, 8}, {"s8.caf", {"pcm_s8"}, pcm, 8}}},
      {16,
       {{"16.wav", {"pcm_s16le"}, pcm, 16},
        {"16.aiff", {"pcm_s16be"}, pcm, 16},
        {"sowt.aiff", {"pcm_s16le"}, pcm, 16},
        {"16.caf", {"pcm_s16be"}, pcm, 16},
        {"16.mov", {"pcm_s16le"}, pcm, 16},
        {"16.flac", {"flac", "-sample_fmt", "s16"}, flac, 16},
        {"flac.oga", {"flac", "-sample_fmt", "s16"}, flac, 16},
        {"16.m4a", {"alac", "-sample_fmt", "s16p"}, alac, 16},
        {"alac16.caf", {"alac", "-sample_fmt", "s16p"}, alac, 16}}},
      {24,
       {{"24.wav", {"pcm_s24le"}, pcm, 24},
        {"rf64.wav", {"pcm_s24le", "-rf64", "always"}, pcm, 24},
        {"32.wav", {"pcm_s32le"}, pcm, 32},
        {"float.wav", {"pcm_f32le"}, pcm, 32},
        {"double.wav", {"pcm_f64le"}, pcm, 64},
        {"24.aiff", {"pcm_s24be"}, pcm, 24},
        {"float.aiff", {"pcm_f32be"}, pcm, 32},
        {"24le.caf", {"pcm_s24le"}, pcm, 24},
        {"floatle.caf", {"pcm_f32le"}, pcm, 32},
        {"double.caf", {"pcm_f64le"}, pcm, 64},
        {"24.flac", {"flac", "-sample_fmt", "s32", "-bits_per_raw_sample", "24"}, flac, 24},
        {"flac.mp4", {"flac", "-strict", "-2"}, flac, 24},
        {"24.m4a", {"alac"}, alac, 24},
        {"alac24.caf", {"alac"}, alac, 24}}},
  };
  for (const auto& [sourceBits, forms] : cases) {
    const ScratchFolder scratch;
    const Signal source = steps(sourceBits);
    makeForms(scratch, source, forms);
    for (const Form& form : forms) {
      SCOPED_TRACE(form.name);
      const AudioFileReader reader(scratch / form.name);
      EXPECT_EQ(reader.fileFormat().formatID, form.formatID);
      EXPECT_EQ(reader.fileFormat().bitsPerChannel, form.bits);
      EXPECT_EQ(reader.fileFormat().sampleRate, 48000);
      EXPECT_EQ(reader.fileFormat().channelsPerFrame, 2u);
      EXPECT_EQ(readSignal(scratch / form.name).planes, source.planes);
    }
  }
}

TEST(AudioFormats, LossyFilesNameTheirFormatAndNoDepth) {
  const ScratchFolder scratch;
  const auto id = [](const char(&text)[5]) { return fourCharacterCode(text); };
  const std::vector<Form> forms = {{"a.mp3", {"libmp3lame"}, id(".mp3"), 0},
                                   {"a.m4a", {"aac"}, id("aac "), 0},
                                   {"a.aac", {"aac"}, id("aac "), 0},
                                   {"a.ogg", {"libvorbis"}, id("vorb"), 0},
                                   {"a.opus", {"libopus"}, id("opus"), 0},
                                   {"mulaw.wav", {"pcm_mulaw"}, id("ulaw"), 0},
                                   {"alaw.aiff", {"pcm_alaw"}, id("alaw"), 0},
                                   {"adpcm.wav", {"adpcm_ms"}, id("????"), 0},
                                   {"mp3.wav", {"libmp3lame"}, id(".mp3"), 0},
                                   {"a.wma", {"wmav2"}, id("????"), 0},
                                   {"ima4.caf", {"adpcm_ima_qt"}, id("????"), 0}};
  makeForms(scratch, steps(16, 20'000), forms);
  for (const Form& form : forms) {
    SCOPED_TRACE(form.name);
    AudioFileReader reader(scratch / form.name);
    EXPECT_EQ(reader.fileFormat().formatID, form.formatID);
    EXPECT_EQ(reader.fileFormat().bitsPerChannel, 0u);
    EXPECT_NEAR(static_cast<double>(reader.length()), 20'000, 2'100);
  }
}

TEST(AudioFormats, DelayAndPaddingThatAFileStatesAreTrimmed) {
  const ScratchFolder scratch;
  const Signal source = music(48000, 2, 1.5);
  const auto frames = source.count();
  const std::string wave = writeWave(scratch / "in.wav", source).string();
  ffmpeg({"-i", wave, "-b:a", "256k", (scratch / "a.mp3").string(), "-b:a", "256k",
          (scratch / "a.m4a").string()});
  runProgram({resource("lame").string(), "--quiet", "-b", "256", wave, (scratch / "lame.mp3").string()});
  // An edit list counts in the movie's time scale, which is made the sample rate here.
  const auto edit = [&](const std::filesystem::path& path, std::uint64_t start, std::uint64_t length) {
    patch(path, "mvhd", 12, bigEndian(48000, 4));
    patch(path, "elst", 8, bigEndian(length, 4) + bigEndian(start, 4));
  };
  constexpr int priming = 1024;
  edit(scratch / "a.m4a", priming, frames);
  std::filesystem::copy_file(scratch / "a.m4a", scratch / "middle.m4a");
  edit(scratch / "middle.m4a", priming + 3000, 30'001);

  const struct {
    const char* name;
    std::int64_t first;
    std::int64_t length;
  } cases[] = {
      {"a.mp3", 0, frames}, {"lame.mp3", 0, frames}, {"a.m4a", 0, frames}, {"middle.m4a", 3000, 30'001}};
  for (const auto& [name, first, length] : cases) {
    SCOPED_TRACE(name);
    const Signal decoded = readSignal(scratch / name);
    ASSERT_EQ(decoded.count(), length);
    // A shift by a single frame would leave an error near the level of the signal.
    double error = 0;
    double level = 0;
    for (std::int64_t i = 0; i < length; ++i) {
      const double original = source.planes[0][static_cast<std::size_t>(first + i)];
      error += std::pow(decoded.planes[0][static_cast<std::size_t>(i)] - original, 2);
      level += original * original;
    }
    EXPECT_LT(error, 0.01 * level);
  }
}

TEST(AudioFormats, TheFirstAudioStreamIsRead) {
  const ScratchFolder scratch;
  const Signal source = steps(16, 20'000);
  const Signal other = sine(44100, 1, 10'000, 440, 0.5);
  const std::string first = writeWave(scratch / "first.wav", source, SampleType::int16).string();
  const std::string second = writeWave(scratch / "second.wav", other, SampleType::int16).string();
  const auto make = [&](const std::vector<std::string>& rest) {
    std::vector<std::string> arguments = {"-f", "lavfi", "-i", "testsrc=s=64x64:d=0.3",
                                          "-i", first,   "-i", second};
    arguments.insert(arguments.end(), rest.begin(), rest.end());
    ffmpeg(arguments);
  };
  make({"-frames:v", "1", (scratch / "cover.png").string()});
  for (const auto& [name, codec] : {std::pair("several.mkv", "flac"), std::pair("several.mov", "alac")})
    make({"-map", "0", "-map", "1", "-map", "2", "-c:a", codec, (scratch / name).string()});
  const std::string cover = (scratch / "cover.png").string();
  for (const auto& [name, codec] : {std::pair("cover.flac", "flac"), std::pair("cover.m4a", "alac")}) {
    ffmpeg({"-i", first, "-i", cover, "-map", "1:v", "-map", "0:a", "-c:v", "copy", "-disposition:v",
            "attached_pic", "-c:a", codec, (scratch / name).string()});
  }
  for (const char* name : {"several.mkv", "several.mov", "cover.flac", "cover.m4a"}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(readSignal(scratch / name).planes, source.planes);
  }
}

}  // namespace zarnet::test
