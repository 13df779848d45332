#pragma once

#include "platform/AudioEngine.h"

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
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

  void connect(RenderCallback source, ConfigurationChange changed) override;
  void start(std::uint64_t session) override;
  void stop() override;
  bool isRunning() const override;

  /// One output buffer of `frames` frames. Without a session, and where the source writes nothing, all
  /// samples are 99.
  Rendered render(std::int64_t frames);

  /// Ends the session as a change of the output does; without one nothing happens.
  void loseDevice();

  std::optional<std::string> startError;  ///< when set, `start` raises it as a `PlatformError`
  RenderCallback source;

 private:
  ConfigurationChange changed;
  mutable std::mutex lock;
  bool running = false;       // guarded by `lock`
  std::uint64_t session = 0;  // guarded by `lock`
};

}  // namespace zarnet::test
