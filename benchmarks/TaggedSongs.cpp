#include "benchmarks/TaggedSongs.h"

#include "tests/support/Programs.h"

#include <string>

namespace zarnet::benchmarks {

std::vector<std::filesystem::path> taggedSongs(const std::filesystem::path& folder, std::size_t count) {
  test::runScript(folder, R"(
    ffmpeg -f lavfi -i mandelbrot=s=600x600 -frames:v 1 -q:v 2 cover.jpg
    ffmpeg -f lavfi -i anoisesrc=d=180:r=44100:a=0.001,aformat=channel_layouts=stereo -i cover.jpg \
      -map 0 -map 1 -c:v copy -disposition:v attached_pic -metadata title="Harbour at Dawn" \
      -metadata artist="Ensemble Nord" -metadata album=Coast 0.flac)");
  const std::filesystem::path first = folder / "0.flac";
  std::vector<std::filesystem::path> files = {first};
  while (files.size() < count) {
    files.push_back(folder / (std::to_string(files.size()) + ".flac"));
    std::filesystem::create_hard_link(first, files.back());
  }
  return files;
}

}  // namespace zarnet::benchmarks
