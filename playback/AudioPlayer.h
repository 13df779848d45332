#pragma once

#include "output/AudioEngine.h"
#include "prepare/PreparedAudio.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace zarnet {

struct PlaybackState;

/// Queues a task to be run on the interface thread; called on any thread.
using Dispatcher = std::function<void(std::function<void()> task)>;

/// Runs the task at once on the calling thread: the dispatcher of a program without an event loop. It is safe
/// for the player, whose only task takes `lock` like every other access to what it touches; `status` then
/// tells of a lost device a little sooner.
void runAtOnce(const std::function<void()>& task);

/// What `AudioPlayer::status` reports, by key.
using PlayerStatus = std::map<std::string, std::variant<double, bool>, std::less<>>;

/// Plays one prepared comparison, whose two versions stand behind the labels "A" and "B". Both are rendered
/// from memory at the same position all the time; `select` moves a crossfade of 5 ms between them, so that a
/// switch has no gap and moves nothing. Every jump fades in over 5 ms.
///
/// All operations belong to the interface thread; none blocks on the audio thread for longer than one buffer.
/// No operation but `play` raises. Times are seconds at 48,000 frames each.
class AudioPlayer {
 public:
  /// Connects the engine without starting it. A change of the output reaches the player through `dispatch`.
  explicit AudioPlayer(std::unique_ptr<AudioEngine> engine = makeAudioEngine(),
                       Dispatcher dispatch = runAtOnce);
  /// Ends the engine; a notice of a change that is still queued then finds nothing to touch.
  ~AudioPlayer();
  AudioPlayer(const AudioPlayer&) = delete;
  AudioPlayer& operator=(const AudioPlayer&) = delete;

  /// Stops the engine and installs a comparison, paused at its start, with "A" selected and looping off. The
  /// loop is set to seconds 42 to 54, or to what a shorter track has of its last second. `losslessA` tells
  /// whether "A" is the original, until the next `load`.
  void load(PreparedAudio comparison, bool losslessA);

  /// Starts playback where it stands, or from the beginning at the end of the track. Raises `AppError`
  /// "Choose a track first." without a comparison, and `PlatformError` within 2.5 s when the output cannot be
  /// opened; nothing is changed then.
  void play();

  /// Stops the advance. The engine keeps running and puts out silence.
  void pause();

  /// Stops the engine and unloads the comparison; the position becomes 0, the loop's bounds stay.
  void stop();

  /// "A" selects A; any other text selects B.
  void select(std::string_view label);

  /// Moves to a time, clamped to the track. Nothing happens without a comparison or when `seconds` is not
  /// finite.
  void seek(double seconds);

  /// Sets the listening volume, linear, clamped to [0, 1]; initially 0.7. Nothing happens when `value` is not
  /// finite.
  void setVolume(double value);

  /// Switches looping. With both times given, finite and in order, and a comparison loaded, they become the
  /// loop's bounds, clamped to the track and at least one frame apart; otherwise the bounds stay. A position
  /// outside the loop that is switched on moves to its start; one inside is kept.
  void setLoop(bool enabled, std::optional<double> start, std::optional<double> end);

  /// Exactly these keys: "position" (seconds), "playing" (boolean), "duration" (seconds, 0.0 without a
  /// comparison), "loopStart" and "loopEnd" (seconds).
  PlayerStatus status() const;

 private:
  const std::shared_ptr<PlaybackState> state;  // the engine's callbacks hold it weakly
  const std::unique_ptr<AudioEngine> engine;   // goes first, so that the render callback has ended
  std::uint64_t startedSessions = 0;
};

}  // namespace zarnet
