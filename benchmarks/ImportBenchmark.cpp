// The import of 100 tagged FLAC files with pictures as one batch; and how long the interface stands still
// when a model takes over 2,000 songs.

#include "benchmarks/TaggedSongs.h"
#include "model/NativeModel.h"
#include "model/SongImport.h"
#include "tests/support/FakeAudioEngine.h"
#include "tests/support/Programs.h"
#include "tests/support/ScratchFolder.h"

#include <QGuiApplication>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

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

/// The turn of the event loop, in seconds, in which an empty list takes 2,000 songs, and that in which it
/// then refuses the same again.
void merge2000Songs(benchmark::State& state) {
  const test::ScratchFolder folder;
  std::vector<std::filesystem::path> files = {folder / "0.flac"};
  test::runScript(folder.path(),
                  "ffmpeg -f lavfi -i anoisesrc=d=0.1 -metadata title='Harbour at Dawn' 0.flac");
  for (int i = 1; i < 2000; ++i) {
    files.push_back(folder / (std::to_string(i) + ".flac"));
    std::filesystem::create_hard_link(files.front(), files.back());
  }
  NativeModel model(folder.path(), std::make_unique<test::FakeAudioEngine>(), Defaults(folder / "defaults"));
  for ([[maybe_unused]] auto _ : state) {
    for (const char* turn : {"taken", "refused"}) {
      std::chrono::steady_clock::time_point begin;
      model.importFiles(files);
      while (model.importing) {
        begin = std::chrono::steady_clock::now();
        QCoreApplication::processEvents();
      }
      const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
      state.counters[turn] = taken.count();
    }
    if (model.songs().size() != files.size()) std::abort();
    model.clearSongs();
  }
}
BENCHMARK(merge2000Songs)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
}  // namespace zarnet

int main(int argc, char** argv) {
  const QGuiApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
}
