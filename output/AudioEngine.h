#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

namespace zarnet {

/// What an engine pulls its sound from, one output buffer a call.
///
/// `buffers` holds one plane for each channel, left then right, of `frames` 32-bit floats at 48 kHz (full
/// scale ±1.0). A plane may be null and is then passed over; planes beyond the second belong to channels that
/// have no signal. `silence` is true on entry: as long as it stays true the engine plays silence and never
/// looks at the planes; a source that fills them clears it.
///
/// Called on the engine's own thread, one call at a time, only between a `start` and the end of its session.
/// It must return well within the length of the buffer: it allocates and frees nothing, does no input or
/// output, calls neither the engine nor anything else that may block, and raises nothing. The one thing it
/// may wait for is a lock that no other thread ever holds for more than a few field updates.
using RenderCallback =
    std::function<void(bool& silence, std::span<float* const> buffers, std::int64_t frames)>;

/// Tells that the output changed under a running session, which has ended with it. `session` is the number
/// that was given to `start`. Called at most once for each session, on the engine's own thread; it may take
/// short locks and queue work, but must not call the engine.
using ConfigurationChange = std::function<void(std::uint64_t session)>;

/// The way to the output device: pulls stereo sound at 48 kHz from one source while it runs.
///
/// It plays on the device that is the output at the time of `start`, and only there: when that device goes,
/// changes, or is no longer the chosen output, or the audio server goes, the session ends at once; nothing is
/// heard elsewhere until the next `start`. For the same reason a mixer cannot move the stream. Where the
/// server has sent the stream to another output than the default one, a change of the default does not
/// matter.
///
/// What the source gives too late is heard later, after silence: the engine loses no frame and repeats none.
/// The audio server may lose some itself on a machine that is too busy for it.
///
/// Operations belong to one thread, the interface thread. Destruction stops the engine.
class AudioEngine {
 public:
  AudioEngine() = default;
  virtual ~AudioEngine() = default;
  AudioEngine(const AudioEngine&) = delete;
  AudioEngine& operator=(const AudioEngine&) = delete;

  /// Sets the source and the listener to changes; once, before the first `start`.
  virtual void connect(RenderCallback source, ConfigurationChange changed) = 0;

  /// Starts a session; `session` is the caller's number for it, given back when the output changes. Returns
  /// or raises `PlatformError` ("No audio output is available. …" with the reason) within 2.5 s, whatever
  /// state the audio server is in; after an error the engine is stopped and can be started again.
  /// Requires: a source is connected; the engine is not running.
  virtual void start(std::uint64_t session) = 0;

  /// Ends the session, if there is one: when it returns, the source is not called any more and what was not
  /// heard yet is dropped. Waits for the end of a call in progress, never for the audio server.
  virtual void stop() = 0;

  /// True from a `start` to the next `stop` or change of the output. Never waits.
  virtual bool isRunning() const = 0;
};

/// The engine of this platform. `server` is the address of the audio server, as in "unix:/run/…/native";
/// empty for the user's own. Nothing is contacted before `start`.
std::unique_ptr<AudioEngine> makeAudioEngine(const std::string& server = {});

}  // namespace zarnet
