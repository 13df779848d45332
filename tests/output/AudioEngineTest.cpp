#include "output/AudioEngine.h"
#include "output/PulseConfiguration.h"
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
      server.control(i % 2 == 0 ? "set-default-sink second" : "set-default-sink first");
  });
  std::string reason;
  EXPECT_TRUE(waitUntil([&] {
    reason = failureOf<PlatformError>([&] { engine->start(1); });
    // A session that began may be over by now.
    EXPECT_FALSE(!reason.empty() && engine->isRunning());
    engine->stop();
    return !reason.empty();
  }));
  EXPECT_EQ(reason, "No audio output is available. The output changed while it was being opened.");
  done = true;
  changes.join();
}

TEST(AudioEngine, LeavesNothingForTheServerToTakeFromOtherPrograms) {
  const SoundServer server;
  const auto engine = makeAudioEngine(server.address());
  engine->connect([](bool&, std::span<float* const>, std::int64_t) {}, [](std::uint64_t) {});
  engine->start(1);
  const std::string streams = server.control("list sink-inputs");
  EXPECT_NE(streams.find("application.id = \"org.zarnet.Zarnet\""), streams.npos) << streams;
  EXPECT_EQ(streams.find("media.role"), streams.npos) << streams;
}

TEST(AudioEngine, StaysOnAnOutputThatIsNotTheDefaultOneWhenThatChanges) {
  const SoundServer server({"first", "second", "third"});
  std::atomic<std::int64_t> pulled = 0;
  const auto engine = makeAudioEngine(server.address());
  engine->connect([&](bool&, std::span<float* const>, std::int64_t frames) { pulled += frames; },
                  [](std::uint64_t) {});
  setenv("PULSE_SINK", "second", 1);
  engine->start(1);
  unsetenv("PULSE_SINK");
  server.setDefaultSink("third");
  const std::int64_t end = pulled + 24'000;
  EXPECT_TRUE(waitUntil([&] { return pulled >= end; }));
  EXPECT_TRUE(engine->isRunning());
  server.removeSink("second");
  EXPECT_TRUE(waitUntil([&] { return !engine->isRunning(); }));
}

TEST(AudioEngine, WakesAnOutputThatSleepsAndGivesUpOnOneThatMaySleepOn) {
  const SoundServer server;
  std::atomic<std::int64_t> pulled = 0;
  const auto engine = makeAudioEngine(server.address());
  engine->connect([&](bool&, std::span<float* const>, std::int64_t frames) { pulled += frames; },
                  [](std::uint64_t) {});
  if (!SoundServer::isPipeWire()) {  // there every output that is played on wakes up
    server.control("suspend-sink null 1");
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(failureOf<PlatformError>([&] { engine->start(1); }),
              "No audio output is available. The output is suspended.");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(2500));
    EXPECT_EQ(pulled, 0);
    server.control("suspend-sink null 0");
    server.control("load-module module-suspend-on-idle timeout=1");
  }
  EXPECT_TRUE(
      waitUntil([&] { return server.control("list short sinks").find("SUSPENDED") != std::string::npos; }));
  engine->start(2);
  EXPECT_TRUE(waitUntil([&] { return pulled > 0; }));
  EXPECT_TRUE(engine->isRunning());
}

TEST(AudioEngine, TakesTheUsersConfigurationButSharesNoMemory) {
  const SoundServer server({"first", "second"});
  const ScratchFolder home;
  const std::filesystem::path own = home / ".config" / "pulse";
  create_directories(own / "client.conf.d");
  writeFile(own / "client.conf", "enable-shm = yes\ndefault-sink = first\n");
  writeFile(own / "client.conf.d" / "2.conf", "default-sink = second\n");
  writeFile(own / "client.conf.d" / "1.conf", "default-sink = first\n");
  const std::string before = std::getenv("HOME");
  setenv("HOME", home.path().c_str(), 1);
  unsetenv("PULSE_CLIENTCONFIG");
  usePulseConfiguration();
  setenv("HOME", before.c_str(), 1);
  const auto engine = makeAudioEngine(server.address());
  engine->connect([](bool&, std::span<float* const>, std::int64_t) {}, [](std::uint64_t) {});
  engine->start(1);
  EXPECT_EQ(readFile("/proc/self/maps").find("memfd:pulseaudio"), std::string::npos);
  server.removeSink("second");
  EXPECT_TRUE(waitUntil([&] { return !engine->isRunning(); }));
}

TEST(AudioEngine, PlaysSilenceWhileItsSourceIsLateAndLosesNoFrame) {
  constexpr std::int64_t length = 1 << 20;
  const SoundServer server;
  const MonitorRecorder recorder(server, "null");
  std::atomic<std::int64_t> played = 0;
  std::atomic<bool> late = false;
  const auto engine = makeAudioEngine(server.address());
  engine->connect(
      [&](bool& silence, std::span<float* const> buffers, std::int64_t frames) {
        while (late)
          std::this_thread::sleep_for(std::chrono::milliseconds(1));
        silence = false;
        for (std::int64_t i = 0; i < frames; ++i)
          buffers[0][i] = buffers[1][i] = static_cast<float>(++played) / length;
      },
      [](std::uint64_t) {});
  engine->start(1);
  for (int gaps = 0; gaps < 3; ++gaps) {
    ASSERT_TRUE(waitUntil([&] { return recorder.last() != 0; }));
    late = true;
    ASSERT_TRUE(waitUntil([&] { return recorder.last() == 0; }));
    late = false;
  }
  const auto last = static_cast<float>(played + 4800) / length;
  ASSERT_TRUE(waitUntil([&] { return recorder.last() > last; }));
  std::vector<float> heard = recorder.samples();
  std::erase(heard, 0.0f);
  for (std::size_t i = 0; i < heard.size(); ++i)
    ASSERT_EQ(heard[i] * length, heard[0] * length + static_cast<float>(i / 2));
}

}  // namespace zarnet::test
