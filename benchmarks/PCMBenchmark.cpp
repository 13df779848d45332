#include "audio/PCM.h"
#include "benchmarks/Memory.h"
#include "benchmarks/TwentyMinutes.h"

#include <optional>

#include <benchmark/benchmark.h>

namespace zarnet::benchmarks {
namespace {

constexpr auto sampleBytes = 8 * PCM::maximumCount;

/// "besides_MB" is the most that loading takes beyond the 460.8 MB of the samples, "process_MB" the most that
/// the whole process holds meanwhile.
void loadOf20Minutes(benchmark::State& state) {
  const std::filesystem::path& file = twentyMinutes();
  resetPeakMemory();
  const double before = residentMemory();
  std::optional<PCM> signal;
  for ([[maybe_unused]] auto _ : state) {
    signal.emplace(file);
    state.PauseTiming();
    signal.reset();
    state.ResumeTiming();
  }
  state.SetBytesProcessed(state.iterations() * sampleBytes);
  state.counters["besides_MB"] = (peakMemory() - before - static_cast<double>(sampleBytes)) / 1e6;
  state.counters["process_MB"] = peakMemory() / 1e6;
}
BENCHMARK(loadOf20Minutes)->Unit(benchmark::kMillisecond)->Iterations(5);

void peakOf20Minutes(benchmark::State& state) {
  const PCM signal(twentyMinutes());
  for ([[maybe_unused]] auto _ : state)
    benchmark::DoNotOptimize(signal.peak());
  state.SetBytesProcessed(state.iterations() * sampleBytes);
}
BENCHMARK(peakOf20Minutes)->Unit(benchmark::kMillisecond);

void writeRawOf20Minutes(benchmark::State& state) {
  const PCM signal(twentyMinutes());
  const std::filesystem::path raw = twentyMinutes().parent_path() / "noise.raw";
  for ([[maybe_unused]] auto _ : state)
    signal.writeRaw(raw);
  std::filesystem::remove(raw);
  state.SetBytesProcessed(state.iterations() * sampleBytes);
}
BENCHMARK(writeRawOf20Minutes)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace
}  // namespace zarnet::benchmarks
