#include "audio/PCM.h"

#include "audio/AppError.h"
#include "audio/VectorMath.h"
#include "media/AudioFileReader.h"
#include "system/FileHandle.h"
#include "system/Interleaving.h"

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

/// Not cleared: the pages of a large buffer cost nothing until the reader fills them.
std::unique_ptr<float[]> allocate(std::int64_t samples) {
  try {
    return std::make_unique_for_overwrite<float[]>(static_cast<std::size_t>(samples));
  } catch (const std::bad_alloc&) {
    throw undecodable();
  }
}

}  // namespace

struct PCM::Loaded {
  std::unique_ptr<const float[]> buffer;
  std::int64_t planeLength;  // samples from the start of one plane to that of the other
  std::int64_t count;
};

PCM::Loaded PCM::load(const std::filesystem::path& url) {
  AudioFileReader file(url);
  if (file.processingChannels() != 2 || file.processingRate() != rate) throw undecodable();
  const std::int64_t length = file.length();
  if (length < 1 || length > maximumCount) throw undecodable();
  std::unique_ptr<float[]> buffer = allocate(2 * length);
  float* const planes[] = {buffer.get(), buffer.get() + length};
  const std::int64_t delivered = file.read(planes, length);
  if (delivered == 0) throw AppError("The decoded file is empty.");
  return {std::move(buffer), length, delivered};
}

PCM::PCM(const std::filesystem::path& url) : PCM(load(url)) {}

PCM::PCM(Loaded loaded)
    : buffer(std::move(loaded.buffer)),
      count(loaded.count),
      left(buffer.get()),
      right(buffer.get() + loaded.planeLength) {}

float PCM::peak() const {
  return std::max(maximumMagnitude(left, count), maximumMagnitude(right, count));
}

void PCM::writeRaw(const std::filesystem::path& to) const {
  FileHandle file = FileHandle::createForWriting(to);
  std::array<float, 2 * chunkFrames> scratch{};
  for (std::int64_t start = 0; start < count; start += chunkFrames) {
    const std::int64_t frames = std::min(chunkFrames, count - start);
    interleave(left + start, right + start, frames, scratch.data());
    file.write(scratch.data(), static_cast<std::size_t>(2 * frames) * sizeof(float));
  }
}

}  // namespace zarnet
