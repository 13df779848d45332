#include "prepare/CheckRecord.h"
#include "tests/support/Signals.h"

#include <cmath>

#include <gtest/gtest.h>

namespace zarnet {

TEST(CheckRecord, HoldsItsKeysInOrderAndIsNotWrittenWithANumberThatJSONCannotHold) {
  const test::ScratchFolder scratch;
  PreparedAudio prepared = {"unused",
                            test::loaded(test::counting(48000, 1000)),
                            test::loaded(test::counting(48000, 1234)),
                            {1, 44100, 2, 16, "PCM"},
                            -296,
                            0.9987654321012345,
                            {0.5f, 0.1f},
                            {-14.25, -1e-7}};
  const auto path = test::writeFile(scratch / "check.json", std::string(10'000, 'x'));
  writeCheckRecord(path, checkRecordText(prepared, "Ogg Vorbis", 128, true, {0.25f, 1.0f}));
  EXPECT_EQ(test::readFile(path), R"({
  "bitrate": 128,
  "codec": "Ogg Vorbis",
  "correlation": 0.9987654321012345,
  "decodedFrames": 1234,
  "gainLossy": 0.10000000149011612,
  "gainOriginal": 0.5,
  "loudnessLossy": -1e-07,
  "loudnessOriginal": -14.25,
  "matched": true,
  "offsetSamples": -296,
  "originalFrames": 1000,
  "peakLossy": 1.0,
  "peakOriginal": 0.25
}
)");
  writeCheckRecord(scratch / "none", checkRecordText(prepared, "AAC", 256, true, {0.5f, std::nanf("")}));
  prepared.loudness.first = HUGE_VAL;
  writeCheckRecord(scratch / "none", checkRecordText(prepared, "AAC", 256, true, {0.5f, 0.5f}));
  EXPECT_FALSE(std::filesystem::exists(scratch / "none"));
}

}  // namespace zarnet
