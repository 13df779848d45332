#include "prepare/AudioPreparer.h"
#include "tests/support/Programs.h"
#include "tests/support/Signals.h"

#include <cmath>
#include <cstdlib>

#include <gtest/gtest.h>

namespace zarnet {

namespace {

using Source = std::tuple<double, test::SampleType, int>;  // rate, depth, channels

std::string nameOf(const testing::TestParamInfo<Source>& source) {
  const auto [rate, type, channels] = source.param;
  return std::to_string(static_cast<int>(rate)) + "Hz" +
         (type == test::SampleType::int16 ? "16Bit" : "24Bit") + (channels == 1 ? "Mono" : "Stereo");
}

constexpr std::int64_t excerptFrames = 8192;
constexpr std::int64_t reach = 2408;

double energy(const float* samples, std::int64_t count, std::int64_t stride) {
  double sum = 0;
  for (std::int64_t k = 0; k < count; ++k)
    sum += double{samples[k * stride]} * double{samples[k * stride]};
  return sum;
}

/// The first frame of the excerpt that the offset is measured on: the loudest of four places.
std::int64_t excerptOf(const PCM& original, std::int64_t length) {
  std::int64_t best = 0;
  for (const double fraction : {0.1, 0.25, 0.5, 0.7}) {
    const auto place = static_cast<std::int64_t>(static_cast<double>(length) * fraction);
    if (best == 0 || energy(original.left + place, 1024, 8) > energy(original.left + best, 1024, 8))
      best = place;
  }
  return best;
}

/// The sum of products of two excerpts. Free of sanitizers, which would make minutes of it.
[[gnu::no_sanitize_address, gnu::no_sanitize_thread]] float product(const float* a, const float* b) {
  std::array<float, 16> sums{};
  for (const float* const end = a + excerptFrames; a != end; a += 16, b += 16) {
    for (unsigned k = 0; k < 16; ++k)
      sums[k] += a[k] * b[k];
  }
  float sum = 0;
  for (const float part : sums)
    sum += part;
  return sum;
}

/// The lag at which the excerpt correlates best, tried frame by frame over everything that is searched.
std::int64_t bruteForceOffset(const PCM& original, const PCM& lossy) {
  const std::int64_t start = excerptOf(original, std::min(original.count, lossy.count));
  const float* excerpt = lossy.left + start - reach;
  double squares = energy(excerpt, excerptFrames, 1);
  double best = -2;
  std::int64_t offset = 0;
  for (std::int64_t lag = -reach; lag <= reach; ++lag, ++excerpt) {
    const double score =
        double{product(original.left + start, excerpt)} / std::sqrt(std::max(squares, 1e-30));
    if (score > best) {
      best = score;
      offset = lag;
    }
    squares +=
        double{excerpt[excerptFrames]} * double{excerpt[excerptFrames]} - double{*excerpt} * double{*excerpt};
  }
  return offset;
}

/// Loudness as it is heard: of the samples with their gain applied.
double loudnessAt(float gain, const PCM& signal) {
  test::Signal gained{
      48000, {{signal.left, signal.left + signal.count}, {signal.right, signal.right + signal.count}}};
  for (auto& plane : gained.planes) {
    for (float& sample : plane)
      sample *= gain;
  }
  return test::loaded(gained)->loudness();
}

class EndToEnd : public testing::TestWithParam<Source> {};

}  // namespace

TEST_P(EndToEnd, EveryCodecGivesAnAlignedAndMatchedComparison) {
  const auto [rate, type, channels] = GetParam();
  const test::ScratchFolder scratch;
  const auto source = test::writeWave(scratch / "music.wav", test::music(rate, channels, 6), type);
  AudioPreparer preparer(test::resource("lame"));
  const struct {
    std::string codec;
    std::int64_t bitrate;
    std::int64_t tolerance;  ///< frames; very low bitrates smear the attacks
    double correlation;      ///< at least
  } table[] = {
      {"AAC", 64, 0, 0.9},         {"AAC", 160, 0, 0.98},        {"AAC", 320, 0, 0.99},
      {"MP3", 8, 2, 0.7},          {"MP3", 128, 0, 0.98},        {"MP3", 320, 0, 0.99},
      {"Ogg Vorbis", 64, 0, 0.95}, {"Ogg Vorbis", 160, 0, 0.98}, {"Ogg Vorbis", 320, 0, 0.99},
  };
  for (const auto& [codec, bitrate, tolerance, correlation] : table) {
    SCOPED_TRACE(codec + " " + std::to_string(bitrate));
    const PreparedAudio prepared =
        preparer.prepare(source, "id", codec, bitrate, true, [](const std::string&) {});
    EXPECT_EQ(prepared.info.rate, rate);
    EXPECT_EQ(prepared.original->count, 288'000);
    EXPECT_GE(prepared.correlation, correlation);
    const std::int64_t searched = bruteForceOffset(*prepared.original, *prepared.lossy);
    EXPECT_LE(std::abs(prepared.offset - searched), tolerance) << prepared.offset << " is not " << searched;

    const auto [originalGain, lossyGain] = prepared.gains;
    const float highest = std::nextafter(0.98f, 1.0f);
    EXPECT_LE(prepared.original->peak() * originalGain, highest);
    EXPECT_LE(prepared.lossy->peak() * lossyGain, highest);
    EXPECT_NEAR(loudnessAt(originalGain, *prepared.original), loudnessAt(lossyGain, *prepared.lossy), 0.05);
  }
}

INSTANTIATE_TEST_SUITE_P(Sources, EndToEnd,
                         testing::Combine(testing::Values(44100.0, 48000.0, 96000.0),
                                          testing::Values(test::SampleType::int16, test::SampleType::int24),
                                          testing::Values(1, 2)),
                         nameOf);

}  // namespace zarnet
