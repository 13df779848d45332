#include "audio/RawSamples.h"

#include "audio/AppError.h"
#include "audio/PCM.h"
#include "media/AudioFileWriter.h"
#include "system/FileHandle.h"
#include "system/SampleBuffer.h"

#include <array>
#include <bit>
#include <cstdint>

namespace zarnet {

namespace {
constexpr std::size_t chunkFrames = 4096;  // read and written at a time
constexpr std::size_t frameBytes = 2 * sizeof(float);
static_assert(std::endian::native == std::endian::little, "a raw sample file holds little-endian floats");
}  // namespace

void rawPCMToCAF(const std::filesystem::path& input, const std::filesystem::path& output) {
  AudioFileWriter writer(output, PCM::rate, 2);
  FileHandle reader = FileHandle::openForReading(input);
  const SampleBuffer buffer(2, chunkFrames);
  float* const planes[] = {buffer.plane(0), buffer.plane(1)};
  std::array<float, 2 * chunkFrames> scratch{};
  while (const std::size_t bytes = reader.read(scratch.data(), sizeof scratch)) {
    if (bytes % frameBytes != 0) throw AppError("The decoded Vorbis audio is incomplete.");
    const std::size_t frames = bytes / frameBytes;
    for (std::size_t i = 0; i < frames; ++i) {
      planes[0][i] = scratch[2 * i];
      planes[1][i] = scratch[2 * i + 1];
    }
    writer.write(planes, static_cast<std::int64_t>(frames));
  }
  writer.finish();
}

}  // namespace zarnet
