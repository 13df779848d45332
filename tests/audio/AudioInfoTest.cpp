#include "audio/AppError.h"
#include "audio/AudioInfo.h"
#include "tests/support/Failures.h"
#include "tests/support/Programs.h"
#include "tests/support/Signals.h"

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

}  // namespace zarnet
