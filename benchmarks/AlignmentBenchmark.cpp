#include "audio/Alignment.h"
#include "audio/PCM.h"
#include "benchmarks/TwentyMinutes.h"

#include <benchmark/benchmark.h>

namespace zarnet::benchmarks {
namespace {

void alignmentOf20Minutes(benchmark::State& state) {
  const PCM signal(twentyMinutes());
  for ([[maybe_unused]] auto _ : state)
    benchmark::DoNotOptimize(alignment(signal, signal));
}
BENCHMARK(alignmentOf20Minutes)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace zarnet::benchmarks
