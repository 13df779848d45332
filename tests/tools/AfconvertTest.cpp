#include "platform/AudioFileReader.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/Signals.h"
#include "tests/tools/Afconvert.h"

#include <cmath>
#include <filesystem>
#include <numbers>

#include <gtest/gtest.h>

namespace zarnet::test {

TEST(Afconvert, KeepsEverySampleOfA48kHzStereoSource) {
  const ScratchFolder scratch;
  const Signal exact = counting(48000, 100'003);
  Signal wild = noise(48000, 2, 50'001, 4, 1);
  wild.planes[0][7] = -0.0f;
  wild.planes[1][8] = 1e-42f;
  const auto expectSame = [&](const std::filesystem::path& input, const Signal& source) {
    EXPECT_EQ(readSignal(convertFile(input, scratch / "out.wav", toWave)).planes, source.planes) << input;
    EXPECT_EQ(readSignal(convertFile(input, scratch / "out.caf", toCaf)).planes, source.planes) << input;
  };
  expectSame(writeWave(scratch / "int24.wav", exact, SampleType::int24), exact);
  expectSame(writeWave(scratch / "float.wav", exact), exact);
  expectSame(writeWave(scratch / "wild.wav", wild), wild);
}

TEST(Afconvert, TurnsMonoIntoTwoEqualChannelsAtUnityGain) {
  const ScratchFolder scratch;
  Signal mono = counting(48000, 40'007);
  mono.planes.pop_back();
  const Signal exact = readSignal(convertFile(writeWave(scratch / "in.wav", mono), scratch / "a", toWave));
  ASSERT_EQ(exact.planes.size(), 2u);
  EXPECT_EQ(exact.planes[0], mono.planes[0]);
  EXPECT_EQ(exact.planes[1], mono.planes[0]);

  mono.rate = 44100;
  const Signal stereo{44100, {mono.planes[0], mono.planes[0]}};
  EXPECT_EQ(readSignal(convertFile(writeWave(scratch / "m.wav", mono), scratch / "m", toWave)).planes,
            readSignal(convertFile(writeWave(scratch / "s.wav", stereo), scratch / "s", toWave)).planes);
}

TEST(Afconvert, GivesTheRoundedNumberOfFramesAtEveryRate) {
  const ScratchFolder scratch;
  for (const int rate : {8000, 16000, 44100, 48000, 96000}) {
    for (const int frames : {0, 1, 16385, 60'001}) {
      const auto input = writeWave(scratch / "in.wav", noise(rate, 1, frames, 0.5, 3), SampleType::int16);
      AudioFileReader output(convertFile(input, scratch / "out", rate == 16000 ? toCaf : toWave));
      EXPECT_NEAR(static_cast<double>(output.length()), std::round(frames * 48000.0 / rate), 1)
          << frames << " at " << rate;
      EXPECT_EQ(output.processingRate(), 48000);
    }
  }
}

// Against the ideal sine at the output rate, so that gain, position in time and every distortion count.
TEST(Afconvert, KeepsASineInItsPlaceAndShape) {
  const ScratchFolder scratch;
  const struct {
    Words options;
    double rate;
    double frequency;
    double least;  ///< signal to error, dB
  } table[] = {{toWave, 44100, 997, 130},
               {toWave, 44100, 19'000, 130},
               {toWave, 96000, 19'000, 130},
               {toWave, 8000, 3'000, 130},
               {toCaf, 16000, 7'000, 110}};
  const double amplitude = std::pow(10, -1 / 20.0);
  for (const auto& [options, rate, frequency, least] : table) {
    const auto input =
        writeWave(scratch / "in.wav", sine(rate, 2, static_cast<std::int64_t>(rate), frequency, amplitude));
    for (const auto& plane : readSignal(convertFile(input, scratch / "out", options)).planes) {
      double signal = 0;
      double error = 0;
      // A sine that starts and ends is no sine there.
      for (std::size_t i = 4800; i + 4800 < plane.size(); ++i) {
        const double turns = std::fmod(static_cast<double>(i) * frequency / 48000, 1.0);
        const double ideal = amplitude * std::sin(2 * std::numbers::pi * turns);
        signal += ideal * ideal;
        error += (plane[i] - ideal) * (plane[i] - ideal);
      }
      EXPECT_GT(10 * std::log10(signal / error), least) << frequency << " Hz from " << rate << " Hz";
    }
  }
}

}  // namespace zarnet::test
