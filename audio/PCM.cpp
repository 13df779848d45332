#include "audio/PCM.h"

#include "audio/AppError.h"
#include "audio/VectorMath.h"
#include "media/AudioFileReader.h"
#include "system/FileHandle.h"

#include <algorithm>
#include <array>
#include <bit>
#include <new>
#include <utility>

namespace zarnet {

namespace {

constexpr std::int64_t chunkFrames = 4096;  // interleaved and written at a time
static_assert(std::endian::native == std::endian::little, "a raw sample file holds little-endian floats");

AppError undecodable() {
  return AppError("The comparison audio could not be decoded.");
}

std::unique_ptr<SampleBuffer> allocate(std::int64_t frames) {
  try {
    return std::make_unique<SampleBuffer>(2u, frames);
  } catch (const std::bad_alloc&) {
    throw undecodable();
  }
}

}  // namespace

struct PCM::Loaded {
  std::unique_ptr<const SampleBuffer> buffer;
  std::int64_t count;
};

PCM::Loaded PCM::load(const std::filesystem::path& url) {
  AudioFileReader file(url);
  if (file.processingChannels() != 2 || file.processingRate() != rate) throw undecodable();
  const std::int64_t length = file.length();
  if (length < 1 || length > maximumCount) throw undecodable();
  std::unique_ptr<SampleBuffer> buffer = allocate(length);
  float* const planes[] = {buffer->plane(0), buffer->plane(1)};
  const std::int64_t delivered = file.read(planes, length);
  if (delivered == 0) throw AppError("The decoded file is empty.");
  return {std::move(buffer), delivered};
}

PCM::PCM(const std::filesystem::path& url) : PCM(load(url)) {}

PCM::PCM(Loaded loaded)
    : buffer(std::move(loaded.buffer)),
      count(loaded.count),
      left(buffer->plane(0)),
      right(buffer->plane(1)) {}

float PCM::peak() const {
  return std::max(maximumMagnitude(left, count), maximumMagnitude(right, count));
}

void PCM::writeRaw(const std::filesystem::path& to) const {
  FileHandle file = FileHandle::createForWriting(to);
  std::array<float, 2 * chunkFrames> scratch{};
  for (std::int64_t start = 0; start < count; start += chunkFrames) {
    const auto frames = static_cast<std::size_t>(std::min(chunkFrames, count - start));
    for (std::size_t i = 0; i < frames; ++i) {
      scratch[2 * i] = left[start + static_cast<std::int64_t>(i)];
      scratch[2 * i + 1] = right[start + static_cast<std::int64_t>(i)];
    }
    file.write(scratch.data(), 2 * frames * sizeof(float));
  }
}

}  // namespace zarnet
