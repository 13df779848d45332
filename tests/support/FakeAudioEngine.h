#pragma once

#include "output/AudioEngine.h"
#include "system/PlatformError.h"

#include <array>
#include <mutex>
#include <optional>
#include <vector>

namespace zarnet::test {

/// An engine without a device: it renders when it is told to, loses its device when it is told to, and can be
/// told to fail. `render` and `loseDevice` stand for the engine's own thread and may be called on one.
class FakeAudioEngine : public AudioEngine {
 public:
  struct Rendered {
    bool silence;
    std::vector<float> left;
    std::vector<float> right;
  };

  void connect(RenderCallback callback, ConfigurationChange listener) override {
    source = std::move(callback);
    changed = std::move(listener);
  }
  void start(std::uint64_t number) override {
    if (startError) throw PlatformError(*startError);
    const std::lock_guard hold(lock);
    session = number;
  }
  void stop() override {
    const std::lock_guard hold(lock);
    session.reset();
  }
  bool isRunning() const override {
    const std::lock_guard hold(lock);
    return session.has_value();
  }

  /// One output buffer of `frames` frames. Without a session, and where the source writes nothing, all
  /// samples are 99.
  Rendered render(std::int64_t frames) {
    const std::vector<float> untouched(static_cast<std::size_t>(frames), 99);
    Rendered rendered = {true, untouched, untouched};
    const std::array<float*, 2> buffers = {rendered.left.data(), rendered.right.data()};
    const std::lock_guard hold(lock);
    if (session) source(rendered.silence, buffers, frames);
    return rendered;
  }

  /// Ends the session as a change of the output does; without one nothing happens.
  void loseDevice() {
    const std::lock_guard hold(lock);
    if (session) changed(*std::exchange(session, std::nullopt));
  }

  std::optional<std::string> startError;  ///< when set, `start` raises it as a `PlatformError`
  RenderCallback source;

 private:
  ConfigurationChange changed;
  mutable std::mutex lock;
  std::optional<std::uint64_t> session;  // of a running engine; guarded by `lock`
};

}  // namespace zarnet::test
