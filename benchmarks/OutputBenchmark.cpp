// How soon the listener hears a switch, and how soon the player knows that its output is gone: milliseconds
// on a real audio server. Both include what the test's own recorder and helper programs take.

#include "playback/AudioPlayer.h"
#include "tests/support/ReferencePlayer.h"
#include "tests/support/SoundServer.h"
#include "tests/support/Wait.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>

#include <benchmark/benchmark.h>

namespace zarnet {

namespace {

using test::MonitorRecorder;
using test::SoundServer;
using test::waitUntil;

constexpr std::int64_t trackFrames = 960'000;

/// The original is positive in the left channel, the lossy version negative.
PreparedAudio twoSigns() {
  test::Signal positive = test::counting(48000, trackFrames);
  test::Signal negative = positive;
  for (std::size_t k = 0; k < trackFrames; ++k) {
    positive.planes[0][k] = 0.5f;
    negative.planes[0][k] = -0.5f;
  }
  return test::comparison(positive, negative);
}

/// Waits for the condition and counts the time since `begin`; keeps the longest.
template <typename Condition>
void timeUntil(benchmark::State& state, std::chrono::steady_clock::time_point begin, Condition condition) {
  if (!waitUntil(condition)) state.SkipWithError("it never happened");
  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
  state.SetIterationTime(taken.count());
  benchmark::Counter& longest = state.counters["longest"];
  longest = std::max(longest.value, taken.count());
}

/// From a call of `select` to the first changed sample at the monitor.
void switchToMonitor(benchmark::State& state) {
  SoundServer server;
  const MonitorRecorder recorder(server, "null");
  AudioPlayer player(makeAudioEngine(server.address()));
  player.load(twoSigns(), true);
  player.setLoop(true, 0.0, 1000.0);
  player.play();
  bool lossy = false;
  for (auto _ : state) {
    // Settled: the loop's fade-in and the crossfade are over, and the level is that of one version.
    waitUntil([&] { return recorder.last() == (lossy ? -0.35f : 0.35f); });
    lossy = !lossy;
    const auto begin = std::chrono::steady_clock::now();
    player.select(lossy ? "B" : "A");
    timeUntil(state, begin, [&] { return recorder.last() != (lossy ? 0.35f : -0.35f); });
  }
}
BENCHMARK(switchToMonitor)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(50);

/// From the start of the program that changes the default output to "playing" being false.
void changeToStatus(benchmark::State& state) {
  SoundServer server({"first", "second"});
  const MonitorRecorder first(server, "first");
  const MonitorRecorder second(server, "second");
  AudioPlayer player(makeAudioEngine(server.address()));
  player.load(twoSigns(), true);
  bool onSecond = false;
  for (auto _ : state) {
    player.play();
    waitUntil([&] { return (onSecond ? second : first).last() != 0; });
    onSecond = !onSecond;
    const auto begin = std::chrono::steady_clock::now();
    server.setDefaultSink(onSecond ? "second" : "first");
    timeUntil(state, begin, [&] { return !std::get<bool>(player.status().at("playing")); });
  }
}
BENCHMARK(changeToStatus)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(50);

}  // namespace

}  // namespace zarnet
