#include "platform/AudioFileReader.h"
#include "platform/AudioFileWriter.h"
#include "platform/PlatformError.h"
#include "tests/support/Failures.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/LoadedSignal.h"
#include "tests/support/ReadSignal.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/Signals.h"

#include <algorithm>
#include <bit>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zarnet::test {

namespace {

constexpr std::int64_t count = 100'003;

std::vector<const float*> planesOf(const Signal& signal, std::int64_t first = 0) {
  std::vector<const float*> planes;
  for (const auto& plane : signal.planes)
    planes.push_back(plane.data() + first);
  return planes;
}

std::filesystem::path write(const std::filesystem::path& path, const Signal& signal, std::int64_t piece) {
  AudioFileWriter writer(path, signal.rate, static_cast<std::uint32_t>(signal.planes.size()));
  for (std::int64_t first = 0; first < signal.count(); first += piece)
    writer.write(planesOf(signal, first).data(), std::min(piece, signal.count() - first));
  writer.finish();
  return path;
}

}  // namespace

TEST(AudioFileWriter, KeepsEveryBitOfEverySample) {
  const ScratchFolder scratch;
  for (const int channels : {1, 2, 3}) {
    Signal signal = noise(44100, channels, count, 3.0, 5);
    auto& plane = signal.planes.back();
    const float infinity = std::numeric_limits<float>::infinity();
    const float payload = std::bit_cast<float>(0x7FC12345u);
    const std::vector<float> special = {-0.0f, 1e-45f, -1e-40f, infinity, -infinity, payload, 3.4e38f};
    std::copy(special.begin(), special.end(), plane.begin() + 70'000);
    for (const char* name : {"a.caf", "a.wav"}) {
      for (const std::int64_t piece : {count, std::int64_t{4096}, std::int64_t{777}}) {
        SCOPED_TRACE(std::string(name) + " " + std::to_string(channels) + " " + std::to_string(piece));
        const auto path = write(scratch / name, signal, piece);
        const Signal read = readSignal(path);
        EXPECT_EQ(read.rate, 44100);
        ASSERT_EQ(read.planes.size(), signal.planes.size());
        ASSERT_EQ(read.count(), count);
        for (std::size_t channel = 0; channel < read.planes.size(); ++channel) {
          EXPECT_EQ(bits(read.planes[channel].data(), count), bits(signal.planes[channel].data(), count));
        }
      }
    }
  }
}

TEST(AudioFileWriter, AFullDiskIsAnErrorAtTheLatestWhenFinishing) {
  const ScratchFolder scratch;
  const Signal signal = counting(48000, count);
  const std::string full = "“a.caf” could not be written: File too large.";
  struct Case {
    rlim_t limit;
    std::int64_t frames;
    bool failsWhileWriting;
  };
  for (const Case& row : {Case{500'000, count, true}, Case{20'000, 5'000, false}}) {
    SCOPED_TRACE(row.frames);
    const FileSizeLimit guard(row.limit);
    AudioFileWriter writer(scratch / "a.caf", 48000, 2);
    EXPECT_EQ(failureOf<PlatformError>([&] { writer.write(planesOf(signal).data(), row.frames); }),
              row.failsWhileWriting ? full : "");
    EXPECT_EQ(failureOf<PlatformError>([&] { writer.finish(); }), full);
  }
  EXPECT_THAT(
      failureOf<PlatformError>([] { AudioFileWriter("/dev/full", AudioFileContainer::wave, 48000, 2); }),
      testing::HasSubstr("No space left on device"));
}

TEST(AudioFileWriter, AWaveFileRefusesFramesBeyondWhatItsHeaderCanState) {
  const ScratchFolder scratch;
  const Signal signal = counting(48000, 5000);
  {
    AudioFileWriter writer(scratch / "a.wav", 48000, 2);
    writer.write(planesOf(signal).data(), 5000);
    // The planes are not looked at before the refusal.
    constexpr std::int64_t tooMany = (std::int64_t{1} << 32) / 8 - 5000;
    EXPECT_EQ(failureOf<PlatformError>([&] { writer.write(planesOf(signal).data(), tooMany); }),
              "“a.wav” could not be written: A WAV file holds no more than 4 GB.");
  }
  EXPECT_EQ(readSignal(scratch / "a.wav").planes, signal.planes);
}

}  // namespace zarnet::test
