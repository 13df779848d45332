#include "platform/VectorMath.h"
#include "tests/support/Programs.h"
#include "tests/support/ReadSignal.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

namespace zarnet::test {

namespace {

TEST(Lame, keepsTheLevelOfFloatingPointSamples) {
  const ScratchFolder scratch;
  const std::string mp3 = (scratch / "a.mp3").string();
  const std::string decoded = (scratch / "decoded.wav").string();
  for (const double level : {0.01, 0.1, 0.9}) {
    const auto wave = writeWave(scratch / "in.wav", sine(48000, 2, 48'000, 997, level));
    EXPECT_EQ(runProgram({resource("lame").string(), "--silent", "--noreplaygain", "--cbr", "-b", "320",
                          "--resample", "48", "-q", "2", wave.string(), mp3})
                  .status,
              0);
    EXPECT_EQ(runProgram({resource("lame").string(), "--silent", "--decode", mp3, decoded}).status, 0);
    const Signal heard = readSignal(decoded);
    ASSERT_EQ(heard.count(), 48'000);
    EXPECT_NEAR(maximumMagnitude(heard.planes[0].data() + 10'000, 28'000), level, 0.01 * level);
  }
}

}  // namespace

}  // namespace zarnet::test
