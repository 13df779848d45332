#include "system/SampleBuffer.h"

#include <new>

#include <sys/mman.h>

namespace zarnet {

namespace {
constexpr std::size_t lineBytes = 64;
}  // namespace

SampleBuffer::SampleBuffer(std::uint32_t channels, std::int64_t frames) {
  constexpr std::size_t most = std::size_t{1} << 46;
  const auto count = static_cast<std::size_t>(frames);
  if (count > most / sizeof(float) / channels) throw std::bad_alloc();
  planeStride = (count * sizeof(float) + lineBytes - 1) / lineBytes * lineBytes;
  bytes = planeStride * channels;
  if (bytes == 0) bytes = lineBytes;
  memory = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) throw std::bad_alloc();
}

SampleBuffer::~SampleBuffer() {
  munmap(memory, bytes);
}

float* SampleBuffer::plane(std::uint32_t channel) const {
  return reinterpret_cast<float*>(static_cast<std::byte*>(memory) + channel * planeStride);
}

}  // namespace zarnet
