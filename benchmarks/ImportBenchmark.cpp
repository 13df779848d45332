// The import of 100 tagged FLAC files with pictures as one batch.

#include "benchmarks/TaggedSongs.h"
#include "model/SongImport.h"
#include "tests/support/ScratchFolder.h"

#include <cstdlib>

#include <benchmark/benchmark.h>

namespace zarnet {

namespace {

void import100Songs(benchmark::State& state) {
  const test::ScratchFolder folder;
  const auto files = benchmarks::taggedSongs(folder.path(), 100);
  for ([[maybe_unused]] auto _ : state) {
    const ImportedSongs imported = importSongs(files);
    if (imported.songs.size() != files.size() || !imported.songs.back().artwork) std::abort();
  }
}
BENCHMARK(import100Songs)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zarnet
