#include "audio/PCM.h"
#include "benchmarks/TwentyMinutes.h"

#include <chrono>
#include <vector>

#include <benchmark/benchmark.h>
#include <ebur128.h>

namespace zarnet::benchmarks {
namespace {

double secondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double loudnessByLibebur128(const std::vector<float>& interleaved) {
  ebur128_state* meter = ebur128_init(2, 48000, EBUR128_MODE_I);
  ebur128_add_frames_float(meter, interleaved.data(), interleaved.size() / 2);
  double result = 0;
  ebur128_loudness_global(meter, &result);
  ebur128_destroy(&meter);
  return result;
}

/// Both meters in turn on the same 20 minutes. Time is that of `PCM::loudness`; "times_as_fast" is how much
/// longer libebur128 takes, given all its frames at once.
void loudnessAgainstLibebur128(benchmark::State& state) {
  const PCM signal(twentyMinutes());
  std::vector<float> interleaved(2 * static_cast<std::size_t>(signal.count));
  for (std::size_t i = 0; i < interleaved.size() / 2; ++i) {
    interleaved[2 * i] = signal.left[i];
    interleaved[2 * i + 1] = signal.right[i];
  }
  double own = 0;
  double theirs = 0;
  double difference = 0;
  for ([[maybe_unused]] auto _ : state) {
    auto start = std::chrono::steady_clock::now();
    const double measured = signal.loudness();
    const double seconds = secondsSince(start);
    state.SetIterationTime(seconds);
    own += seconds;
    start = std::chrono::steady_clock::now();
    difference = measured - loudnessByLibebur128(interleaved);
    theirs += secondsSince(start);
  }
  state.counters["libebur128_seconds"] = theirs / static_cast<double>(state.iterations());
  state.counters["times_as_fast"] = theirs / own;
  state.counters["difference_LU"] = difference;
}
BENCHMARK(loudnessAgainstLibebur128)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace
}  // namespace zarnet::benchmarks
