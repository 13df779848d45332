#include "tools/afconvert/ReadAhead.h"

#include <utility>

namespace zarnet {

ReadAhead::ReadAhead(std::uint32_t channelCount, FrameSource frames)
    : channels(channelCount),
      source(std::move(frames)),
      samples(static_cast<std::size_t>(channelCount * blockCount * blockFrames)),
      thread([this] { run(); }) {}

ReadAhead::~ReadAhead() {
  {
    const MutexLock lock(mutex);
    abandoned = true;
  }
  changed.notify_all();
}

FrameBlock ReadAhead::next() {
  FrameBlock block;
  std::int64_t index = 0;
  {
    const MutexLock lock(mutex);
    if (holdsBlock) ++released;
    holdsBlock = true;
    index = released % blockCount;
    changed.notify_all();
    while (delivered == released)
      changed.wait(mutex);
    block.count = counts[static_cast<std::size_t>(index)];
    if (block.count == 0) {
      holdsBlock = false;  // the end stays where it is for every further call
      if (failure) std::rethrow_exception(failure);
    }
  }
  block.planes = {plane(index, 0), plane(index, channels - 1)};
  return block;
}

void ReadAhead::run() {
  try {
    for (std::int64_t block = 0; waitForRoom(); ++block) {
      float* const planes[] = {plane(block % blockCount, 0), plane(block % blockCount, channels - 1)};
      const std::int64_t frames = source(planes, blockFrames);
      deliver(frames, nullptr);
      if (frames == 0) return;
    }
  } catch (...) {
    deliver(0, std::current_exception());
  }
}

/// Waits until a block is free; false when nobody wants it any more.
bool ReadAhead::waitForRoom() {
  const MutexLock lock(mutex);
  while (!abandoned && delivered - released == blockCount)
    changed.wait(mutex);
  return !abandoned;
}

void ReadAhead::deliver(std::int64_t frames, std::exception_ptr error) {
  {
    const MutexLock lock(mutex);
    counts[static_cast<std::size_t>(delivered % blockCount)] = frames;
    ++delivered;
    failure = std::move(error);
  }
  changed.notify_all();
}

float* ReadAhead::plane(std::int64_t block, std::uint32_t channel) {
  return samples.data() + (channel * blockCount + block) * blockFrames;
}

}  // namespace zarnet
