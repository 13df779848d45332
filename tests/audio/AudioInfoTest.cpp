#include "audio/AppError.h"
#include "audio/AudioInfo.h"
#include "system/UserError.h"
#include "tests/support/Failures.h"
#include "tests/support/Programs.h"
#include "tests/support/Signals.h"

#include <bit>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace zarnet {

using test::ScratchFolder;

TEST(InspectAudio, DescribesAFileAsItIsStored) {
  const ScratchFolder scratch;
  writeWave(scratch / "source.wav", test::noise(44100, 1, 66'150, 0.5, 3));
  test::runScript(scratch.path(), "ffmpeg -i source.wav -c:a pcm_s16be -ar 22050 a.aiff");
  const AudioInfo info = inspectAudio(scratch / "a.aiff");
  EXPECT_EQ(info.duration, 1.5);
  EXPECT_EQ(info.channels, 1u);
  EXPECT_EQ(info.summary(), "16-bit / 22.05 kHz · PCM");
  EXPECT_EQ((AudioInfo{1, 96000, 2, 0, "FLAC"}.summary()), "96 kHz · FLAC");
}

TEST(InspectAudio, DrawsItsLimitsInOrder) {
  const ScratchFolder scratch;
  const std::string lossy =
      "x\xef\xbf\xbd.wav is already lossy. Choose its original WAV, AIFF, FLAC or Apple Lossless file.";
  const std::string tooLong = "Please use a track or excerpt up to 20 minutes long.";
  const std::string silentFile = "This file contains no playable audio.";
  const std::uint16_t linear = 1;
  const std::uint16_t muLaw = 7;
  const struct {
    std::uint16_t tag, channels;
    std::uint32_t frames;
    std::string refusal;
  } cases[] = {
      {linear, 1, 0, silentFile},      {linear, 1, 1, ""},
      {linear, 1, 9'600'000, ""},      {linear, 1, 9'600'001, tooLong},
      {linear, 6, 9'600'001, tooLong}, {linear, 3, 8000, "Please use mono or stereo audio."},
      {muLaw, 6, 14'400'000, lossy},
  };
  for (const auto& [tag, channels, frames, expected] : cases) {
    const auto file = test::writeHollowWave(scratch / "x\xe9.wav", 8000, channels, 8, frames, tag);
    EXPECT_EQ(test::failureOf<AppError>([&] { inspectAudio(file); }), expected)
        << "tag " << tag << ", " << channels << " × " << frames;
  }
}

TEST(InspectAudio, RefusesACafFileWithoutPacketsOrWithoutAPossibleRate) {
  const ScratchFolder scratch;
  const auto chunk = [](const std::string& code, const std::string& content) {
    return code + test::bigEndian(content.size(), 8) + content;
  };
  const auto caf = [&](double rate, const std::string& code) {
    const std::string stream = test::bigEndian(std::bit_cast<std::uint64_t>(rate), 8) + code +
                               test::bigEndian(0, 8) + test::bigEndian(4096, 4) + test::bigEndian(2, 4) +
                               test::bigEndian(0, 4);
    return "caff" + test::bigEndian(0x1'0000, 4) + chunk("desc", stream) +
           chunk("pakt", std::string(24, '\0')) + chunk("data", std::string(4, '\0'));
  };
  constexpr double infinite = std::numeric_limits<double>::infinity();
  const std::string impossible = "“x” could not be opened: It states no possible sample rate.";
  const std::tuple<double, std::string, std::string> cases[] = {
      {48000, "alac", "This file contains no playable audio."},
      {48000, "aac ", "x is already lossy. Choose its original WAV, AIFF, FLAC or Apple Lossless file."},
      {infinite, "alac", impossible},
      {-infinite, "lpcm", impossible},
      {std::nan(""), "alac", impossible},
      {0, "alac", impossible},
  };
  for (const auto& [rate, code, expected] : cases) {
    const auto file = test::writeFile(scratch / "x", caf(rate, code));
    EXPECT_EQ(test::failureOf<UserError>([&] { inspectAudio(file); }), expected) << code << " at " << rate;
  }
}

}  // namespace zarnet
