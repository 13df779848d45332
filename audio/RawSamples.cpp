#include "audio/RawSamples.h"

#include "audio/AppError.h"
#include "audio/PCM.h"
#include "media/AudioFileWriter.h"
#include "system/FileHandle.h"
#include "system/Interleaving.h"

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
  AudioFileWriter writer(output, PCM::rate);
  FileHandle reader = FileHandle::openForReading(input);
  std::array<float, chunkFrames> left{};
  std::array<float, chunkFrames> right{};
  const float* const planes[] = {left.data(), right.data()};
  std::array<float, 2 * chunkFrames> scratch{};
  while (const std::size_t bytes = reader.read(scratch.data(), sizeof scratch)) {
    if (bytes % frameBytes != 0) throw AppError("The decoded Vorbis audio is incomplete.");
    const auto frames = static_cast<std::int64_t>(bytes / frameBytes);
    deinterleave(scratch.data(), frames, left.data(), right.data());
    writer.write(planes, frames);
  }
  writer.finish();
}

}  // namespace zarnet
