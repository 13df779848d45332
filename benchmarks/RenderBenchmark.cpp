// The cost of a frame in the player's render callback, in seconds, over buffers of 512 frames.

#include "playback/AudioPlayer.h"
#include "tests/support/FakeAudioEngine.h"
#include "tests/support/ReferencePlayer.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

namespace zarnet {

namespace {

constexpr std::int64_t bufferFrames = 512;
constexpr std::int64_t trackFrames = 960'000;

double medianPerFrame(std::vector<double>& seconds) {
  const auto middle = seconds.begin() + static_cast<std::ptrdiff_t>(seconds.size() / 2);
  std::nth_element(seconds.begin(), middle, seconds.end());
  return *middle / static_cast<double>(bufferFrames);
}

/// Each round is four buffers: the switch to the lossy version, that version alone, the switch back and the
/// lossless one alone. The medians of the four stand side by side, so that whatever else the machine does
/// weighs on all of them alike.
void render(benchmark::State& state) {
  auto owned = std::make_unique<test::FakeAudioEngine>();
  test::FakeAudioEngine& engine = *owned;
  AudioPlayer player(std::move(owned));
  player.load(test::comparison(test::noise(48000, 2, trackFrames, 0.7, 1),
                               test::noise(48000, 2, trackFrames, 0.7, 2), 13, {0.91f, 0.83f}),
              true);
  player.setLoop(true, 0.0, 1000.0);
  player.play();
  std::array<float, bufferFrames> left{}, right{};
  const std::array<float*, 2> buffers = {left.data(), right.data()};
  std::array<std::vector<double>, 4> seconds;
  bool silence = false;
  for (auto _ : state) {
    for (std::size_t phase = 0; phase < seconds.size(); ++phase) {
      player.select(phase < 2 ? "B" : "A");
      const auto begin = std::chrono::steady_clock::now();
      engine.source(silence, buffers, bufferFrames);
      const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - begin;
      benchmark::DoNotOptimize(left);
      benchmark::DoNotOptimize(right);
      seconds[phase].push_back(elapsed.count());
    }
  }
  const double toLossy = medianPerFrame(seconds[0]), lossy = medianPerFrame(seconds[1]);
  const double toLossless = medianPerFrame(seconds[2]), lossless = medianPerFrame(seconds[3]);
  state.counters["lossless"] = lossless;
  state.counters["lossy"] = lossy;
  state.counters["lossy/lossless"] = lossy / lossless;
  state.counters["toLossless"] = toLossless;
  state.counters["toLossy"] = toLossy;
  state.counters["toLossy/toLossless"] = toLossy / toLossless;
}
BENCHMARK(render);

}  // namespace

}  // namespace zarnet
