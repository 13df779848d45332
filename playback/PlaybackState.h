#pragma once

#include "prepare/PreparedAudio.h"
#include "system/Mutex.h"

#include <cstdint>
#include <optional>
#include <span>

namespace zarnet {

/// All that the player's operations, on the interface thread, share with its render callback. Positions are
/// frames at 48,000 per second.
struct PlaybackState {
  /// Where the loop lies that a track begins with, unless the track is shorter.
  static constexpr std::int64_t latestLoopStart = 2'016'000;  // 42 s
  static constexpr std::int64_t latestLoopEnd = 2'592'000;    // 54 s

  /// The player's render callback; the contract is that of `RenderCallback`. Holds `lock` for the whole
  /// buffer, so that nothing changes within it. Each sample is computed in 32-bit floats as
  ///
  ///     volume × fade × (original × (1 − blend) × originalGain + lossy × blend × lossyGain)
  ///
  /// with the products taken from the left; both versions always take part, whichever is heard. `blend` goes
  /// towards the selected version and `fade` towards 1 by 1/240 a frame. After the end of the track the rest
  /// of the buffer is silent, and both go on to its end.
  void render(bool& silence, std::span<float* const> buffers, std::int64_t frames) EXCLUDES(lock);

  Mutex lock;
  std::optional<PreparedAudio> audio GUARDED_BY(lock);
  std::int64_t position GUARDED_BY(lock) = 0;  ///< the next frame of the original
  bool running GUARDED_BY(lock) = false;       ///< frames advance
  bool losslessA GUARDED_BY(lock) = true;      ///< "A" is the original, "B" the lossy version
  bool selectedA GUARDED_BY(lock) = true;
  float blend GUARDED_BY(lock) = 0;  ///< 0: only the original is heard, 1: only the lossy version
  float volume GUARDED_BY(lock) = 0.7f;
  bool looping GUARDED_BY(lock) = false;
  std::int64_t loopStart GUARDED_BY(lock) = latestLoopStart;
  std::int64_t loopEnd GUARDED_BY(lock) = latestLoopEnd;  ///< the frame that is not played any more
  float fade GUARDED_BY(lock) = 0;                        ///< the fade-in after a jump, 0 to 1
  std::uint64_t session GUARDED_BY(lock) = 0;      ///< number of the engine session that `play` relies on
  std::uint64_t lostSession GUARDED_BY(lock) = 0;  ///< the latest one whose output changed

 private:
  std::int64_t renderBlock(std::span<float* const> buffers, std::int64_t done, std::int64_t wanted)
      REQUIRES(lock);
};

}  // namespace zarnet
