#include "output/AudioEngine.h"
#include "system/PlatformError.h"
#include "tests/support/Failures.h"
#include "tests/support/SoundServer.h"

#include <atomic>

namespace zarnet::test {

TEST(AudioEngine, SaysWhyNoOutputIsAvailable) {
  const SoundServer dummy(std::vector<std::string>{});
  if (!SoundServer::isPipeWire()) dummy.control("load-module module-always-sink");  // else it is there
  const SoundServer frozen;
  frozen.freeze();
  std::atomic<std::int64_t> pulled = 0;
  const auto makeEngine = [&](const std::string& server) {
    auto engine = makeAudioEngine(server);
    engine->connect([&](bool&, std::span<float* const>, std::int64_t frames) { pulled += frames; },
                    [](std::uint64_t) {});
    return engine;
  };
  const std::pair<std::string, std::string> cases[] = {
      {"unix:/nonexistent/socket", "The audio server could not be reached: Connection refused."},
      {dummy.address(), "There is no output device."},
      {frozen.address(), "The audio server does not answer."},
  };
  for (const auto& [address, reason] : cases) {
    const auto engine = makeEngine(address);
    EXPECT_EQ(failureOf<PlatformError>([&] { engine->start(1); }), "No audio output is available. " + reason);
    EXPECT_FALSE(engine->isRunning()) << reason;
  }
  EXPECT_EQ(pulled, 0);
  frozen.thaw();
  const auto engine = makeEngine(frozen.address());
  engine->start(1);
  EXPECT_TRUE(waitUntil([&] { return pulled > 0; }));
}

TEST(AudioEngine, DoesNotStartOnAnOutputThatChangesWhileItIsBeingOpened) {
  const SoundServer server({"first", "second"});
  const auto engine = makeAudioEngine(server.address());
  engine->connect([](bool&, std::span<float* const>, std::int64_t) {}, [](std::uint64_t) {});
  std::atomic<bool> done = false;
  std::thread changes([&] {
    for (int i = 0; !done; ++i)
      server.setDefaultSink(i % 2 == 0 ? "second" : "first");
  });
  std::string reason;
  EXPECT_TRUE(waitUntil([&] {
    reason = failureOf<PlatformError>([&] { engine->start(1); });
    EXPECT_NE(engine->isRunning(), !reason.empty());
    engine->stop();
    return !reason.empty();
  }));
  EXPECT_EQ(reason, "No audio output is available. The output changed while it was being opened.");
  done = true;
  changes.join();
}

}  // namespace zarnet::test
