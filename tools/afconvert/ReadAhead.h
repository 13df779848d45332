#pragma once

#include "system/Mutex.h"

#include <array>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <functional>
#include <thread>
#include <vector>

namespace zarnet {

/// A stretch of a mono or stereo stream.
struct FrameBlock {
  std::array<const float*, 2> planes{};  ///< both the same one in mono
  std::int64_t count = 0;                ///< frames in each plane
};

/// Fills one plane for each channel with up to `frames` frames and returns how many: fewer than asked only at
/// the end of the stream, 0 from then on.
using FrameSource = std::function<std::int64_t(float* const* planes, std::int64_t frames)>;

/// Runs a source on a thread of its own, a few blocks ahead of whoever takes them. `next` is called from one
/// thread only; a failure of the source comes out of it, behind the blocks that were read before.
class ReadAhead {
 public:
  /// Frames in every block but the last.
  static constexpr std::int64_t blockFrames = 16384;

  /// Starts to read at once. `source` is called on the new thread alone. Requires: channels is 1 or 2.
  ReadAhead(std::uint32_t channels, FrameSource source);
  /// Ends the thread, whether or not the stream was taken to its end.
  ~ReadAhead();
  ReadAhead(const ReadAhead&) = delete;
  ReadAhead& operator=(const ReadAhead&) = delete;

  /// Waits for the next block, which stays valid until the following call. No frames mean the end of the
  /// stream. Raises what the source raised.
  FrameBlock next();

 private:
  // 2 MB in stereo: enough to keep both sides busy when another program takes a core from one of them.
  static constexpr std::int64_t blockCount = 16;

  void run() EXCLUDES(mutex);
  bool waitForRoom() EXCLUDES(mutex);
  void deliver(std::int64_t frames, std::exception_ptr error) EXCLUDES(mutex);
  float* plane(std::int64_t block, std::uint32_t channel);

  const std::uint32_t channels;
  const FrameSource source;
  std::vector<float> samples;  ///< the blocks of the first channel, then those of the second

  // Touched by the thread that calls `next` alone.
  bool holdsBlock = false;

  Mutex mutex;
  std::condition_variable_any changed;
  std::array<std::int64_t, blockCount> counts GUARDED_BY(mutex){};
  /// Blocks since the start, the empty one at the end included.
  std::int64_t delivered GUARDED_BY(mutex) = 0;
  /// Blocks that `next` has given back.
  std::int64_t released GUARDED_BY(mutex) = 0;
  bool abandoned GUARDED_BY(mutex) = false;
  std::exception_ptr failure GUARDED_BY(mutex);

  std::jthread thread;  // last: it ends before what it uses
};

}  // namespace zarnet
