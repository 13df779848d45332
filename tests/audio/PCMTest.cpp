#include "audio/AppError.h"
#include "audio/PCM.h"
#include "audio/RawSamples.h"
#include "audio/VectorMath.h"
#include "media/AudioFileReader.h"
#include "tests/support/Failures.h"
#include "tests/support/Programs.h"
#include "tests/support/Signals.h"

#include <cstring>

#include <gtest/gtest.h>

namespace zarnet {

using test::ScratchFolder;
using test::Signal;

TEST(VectorMath, FindsTheLargestMagnitudeWhereverItStands) {
  for (std::size_t place = 0; place < 37; ++place) {
    std::vector<float> samples(37, 0.5f);
    samples[place] = place % 2 == 0 ? -0.8f : 0.8f;
    EXPECT_EQ(maximumMagnitude(samples.data(), 37), 0.8f) << place;
  }
}

TEST(PCM, RefusesWhatIsNoWorkingFormat) {
  const ScratchFolder scratch;
  const std::string undecodable = "The comparison audio could not be decoded.";
  const struct {
    std::uint32_t rate;
    std::uint16_t channels;
    std::uint32_t frames;
  } cases[] = {
      {44100, 2, 1000}, {48000, 1, 1000}, {48000, 3, 1000}, {48000, 2, 0}, {48000, 2, PCM::maximumCount + 1}};
  for (const auto& [rate, channels, frames] : cases) {
    const auto file = test::writeHollowWave(scratch / "x.wav", rate, channels, 16, frames);
    EXPECT_EQ(test::failureOf<AppError>([&] { PCM pcm(file); }), undecodable)
        << rate << " " << channels << " " << frames;
  }
}

TEST(RawSamples, AreInterleavedAndReturnEveryBitInItsChannel) {
  const ScratchFolder scratch;
  test::writeFile(scratch / "raw", std::string(200'000, 'x'));
  for (const std::int64_t frames : {1, 4097}) {
    Signal signal = test::counting(48000, frames);
    signal.planes[0][0] = 1e-42f;
    signal.planes[1][0] = std::numeric_limits<float>::signaling_NaN();
    test::loaded(signal)->writeRaw(scratch / "raw");
    const std::string raw = test::readFile(scratch / "raw");
    ASSERT_EQ(raw.size(), static_cast<std::size_t>(frames) * 8);
    EXPECT_EQ(std::memcmp(&raw[raw.size() - 8], &signal.planes[0].back(), 4), 0) << frames;
    rawPCMToCAF(scratch / "raw", scratch / "back.caf");
    const PCM back(scratch / "back.caf");
    ASSERT_EQ(back.count, frames);
    EXPECT_EQ(std::memcmp(back.right, signal.planes[1].data(), raw.size() / 2), 0) << frames;
  }
}

TEST(RawSamples, AreRefusedWithHalfAFrameButKeepTheChunksBefore) {
  const ScratchFolder scratch;
  const std::pair<std::size_t, std::int64_t> cases[] = {{80'004, 8192}, {32'769, 4096}, {32'767, 0}};
  for (const auto& [bytes, framesKept] : cases) {
    test::writeFile(scratch / "raw", std::string(bytes, 'x'));
    EXPECT_EQ(test::failureOf<AppError>([&] { rawPCMToCAF(scratch / "raw", scratch / "out.caf"); }),
              "The decoded Vorbis audio is incomplete.");
    EXPECT_EQ(AudioFileReader(scratch / "out.caf").length(), framesKept) << bytes;
  }
}

}  // namespace zarnet
