// The import of 100 tagged FLAC files, of three minutes and with a picture of 600 × 600 each, as one batch.

#include "model/SongImport.h"
#include "tests/support/Programs.h"
#include "tests/support/ScratchFolder.h"

#include <cstdlib>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

namespace zarnet {

namespace {

void import100Songs(benchmark::State& state) {
  const test::ScratchFolder folder;
  const std::string picture = (folder / "cover.jpg").string();
  const std::string first = (folder / "0.flac").string();
  test::ffmpeg({"-f", "lavfi", "-i", "mandelbrot=s=600x600", "-frames:v", "1", "-q:v", "2", picture});
  test::ffmpeg({"-f",
                "lavfi",
                "-i",
                "anoisesrc=d=180:r=44100:a=0.001,aformat=channel_layouts=stereo",
                "-i",
                picture,
                "-map",
                "0",
                "-map",
                "1",
                "-c:v",
                "copy",
                "-disposition:v",
                "attached_pic",
                "-metadata",
                "title=Harbour at Dawn",
                "-metadata",
                "artist=Ensemble Nord",
                "-metadata",
                "album=Coast",
                first});
  std::vector<std::filesystem::path> files = {first};
  for (int i = 1; i < 100; ++i) {
    files.push_back(folder / (std::to_string(i) + ".flac"));
    std::filesystem::create_hard_link(first, files.back());
  }
  for ([[maybe_unused]] auto _ : state) {
    const ImportedSongs imported = importSongs(files);
    if (imported.songs.size() != files.size() || !imported.songs.back().artwork) std::abort();
  }
  state.counters["picture_kB"] = static_cast<double>(std::filesystem::file_size(picture)) / 1e3;
}
BENCHMARK(import100Songs)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace zarnet
