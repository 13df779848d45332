#include "benchmarks/TwentyMinutes.h"

#include "audio/PCM.h"
#include "media/AudioFileWriter.h"
#include "system/FileSystem.h"
#include "system/UUID.h"

#include <cstdint>
#include <vector>

namespace zarnet::benchmarks {

namespace {

struct NoiseFile {
  NoiseFile() : folder(temporaryFolder() / ("zarnet-benchmark-" + newUUID())), path(folder / "noise.caf") {
    createFolders(folder);
    AudioFileWriter writer(path, 48000);
    std::vector<float> left(48'000);
    std::vector<float> right(48'000);
    const float* const planes[] = {left.data(), right.data()};
    std::uint32_t seed = 1;
    const auto random = [&seed] {
      seed = seed * 1664525 + 1013904223;
      return static_cast<float>(static_cast<std::int32_t>(seed)) * 0x1p-33f;
    };
    for (std::int64_t frame = 0; frame < PCM::maximumCount; frame += 48'000) {
      for (std::size_t i = 0; i < left.size(); ++i) {
        left[i] = random();
        right[i] = random();
      }
      writer.write(planes, 48'000);
    }
    writer.finish();
  }
  ~NoiseFile() { removeAll(folder); }

  std::filesystem::path folder;
  std::filesystem::path path;
};

}  // namespace

const std::filesystem::path& twentyMinutes() {
  static const NoiseFile file;
  return file.path;
}

}  // namespace zarnet::benchmarks
