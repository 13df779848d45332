#include "platform/VectorMath.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/Signals.h"
#include "tests/tools/Afconvert.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

namespace zarnet::test {

namespace {

/// What ffprobe tells about the audio stream of a file.
double probed(const std::filesystem::path& path, const std::string& field) {
  const ProgramResult result = runProgram({"ffprobe", "-v", "error", "-select_streams", "a", "-show_entries",
                                           "stream=" + field, "-of", "csv=p=0", path.string()});
  return std::stod(result.output);
}

/// By how many frames `later` lags behind `earlier`, from −50 to 50.
std::int64_t lag(const std::vector<float>& earlier, const std::vector<float>& later) {
  constexpr std::int64_t range = 50;
  const auto count = static_cast<std::int64_t>(std::min(earlier.size(), later.size())) - 2 * range;
  std::int64_t best = 0;
  float highest = 0;
  for (std::int64_t shift = -range; shift <= range; ++shift) {
    const float match = dotProduct(earlier.data() + range, later.data() + range + shift, 1, count);
    if (match > highest) {
      highest = match;
      best = shift;
    }
  }
  return best;
}

}  // namespace

TEST(AfconvertToAac, StaysNearTheNominalBitrate) {
  const ScratchFolder scratch;
  // Mono at 192 kbps is where the encoder, left to itself, goes furthest beyond.
  const std::tuple<int, int, double> table[] = {{2, 64, 0.97}, {1, 192, 0.97}, {2, 320, 0.7}};
  for (const auto& [channels, kbps, lowest] : table) {
    const auto input = writeWave(scratch / "in.wav", music(48000, channels, 20, 5));
    const double factor =
        probed(convertFile(input, scratch / "a.m4a", toAac(kbps)), "bit_rate") / (kbps * 1000);
    EXPECT_GT(factor, lowest) << kbps;
    EXPECT_LT(factor, 1.02) << kbps;
  }
}

TEST(AfconvertToAac, KeepsRateChannelsLengthAndPosition) {
  const ScratchFolder scratch;
  const std::tuple<double, int, std::int64_t> table[] = {{48000, 2, 72'000}, {48000, 2, 1},
                                                         {48000, 2, 1024},   {48000, 2, 1025},
                                                         {44100, 1, 50'001}, {96000, 2, 100'000}};
  for (const auto& [rate, channels, frames] : table) {
    SCOPED_TRACE(std::to_string(frames) + " frames");
    Signal source = music(rate, channels, 1.5);
    for (auto& plane : source.planes)
      plane.resize(static_cast<std::size_t>(frames));
    const auto encoded =
        convertFile(writeWave(scratch / "in.wav", source), scratch / "a.m4a", toAac(channels * 96));
    const Signal decoded = readSignal(encoded);
    EXPECT_EQ(decoded.rate, rate);
    ASSERT_EQ(decoded.planes.size(), source.planes.size());
    EXPECT_EQ(decoded.count(), frames);
    // What other programs are told.
    EXPECT_EQ(probed(encoded, "duration_ts"), static_cast<double>(frames));
    EXPECT_EQ(probed(encoded, "start_pts"), 0);
    if (frames < 10'000) continue;
    EXPECT_EQ(lag(source.planes[0], decoded.planes[0]), 0);
  }
}

}  // namespace zarnet::test
