#include "platform/VectorMath.h"
#include "tests/support/Programs.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

namespace zarnet::test {

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
