// Tries faults of the sound server on the engine, again and again, and prints a row for each: how often, how
// often the engine answered in time and what its slowest answer was, and whether it left anything behind. For
// script/faults/sound; the argument is the number of tries of the first row.

#include "output/AudioEngine.h"
#include "system/PlatformError.h"
#include "tests/support/SoundServer.h"

#include <atomic>
#include <cstdio>
#include <random>

namespace zarnet::test {

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int signalLength = 1 << 20;  // frames, after which the counting signal begins again

std::size_t entries(const char* folder) {
  return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
}

/// What a session could leave behind in this process.
std::pair<std::size_t, std::size_t> held() {
  return {entries("/proc/self/task"), entries("/proc/self/fd")};
}

/// Ends the program where a try takes longer than 30 s.
class Watchdog {
 public:
  void begin() { deadline = (Clock::now() + std::chrono::seconds(30)).time_since_epoch().count(); }
  void end() { deadline = std::numeric_limits<Clock::rep>::max(); }
  void watch() {
    std::thread([this] {
      while (Clock::now().time_since_epoch().count() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
      std::puts("a try hangs");
      std::fflush(stdout);
      _exit(1);
    }).detach();
  }

 private:
  std::atomic<Clock::rep> deadline = std::numeric_limits<Clock::rep>::max();
};

Watchdog watchdog;
bool allWell = true;

/// An engine that plays a signal whose every frame says its number.
struct Player {
  explicit Player(const SoundServer& server) : engine(makeAudioEngine(server.address())) {
    engine->connect(
        [this](bool& silence, std::span<float* const> buffers, std::int64_t frames) {
          silence = false;
          for (std::int64_t i = 0; i < frames; ++i, ++played)
            buffers[0][i] = buffers[1][i] = static_cast<float>(played % signalLength + 1) / signalLength;
        },
        [](std::uint64_t) {});
  }

  std::atomic<std::int64_t> played = 0;
  const std::unique_ptr<AudioEngine> engine;
};

struct Row {
  const char* fault;
  int tries;
  double limit;  // milliseconds
  int inTime = 0;
  int clean = 0;
  double slowest = 0;

  template <typename Try>
  void add(SoundServer& server, Try make) {
    const auto before = held();
    Milliseconds taken;
    watchdog.begin();
    {
      Player player(server);
      taken = make(server, player);
    }
    watchdog.end();
    inTime += taken.count() <= limit;
    slowest = std::max(slowest, taken.count());
    clean += waitUntil([&] { return held() == before; }, std::chrono::seconds(1));
  }

  void print() const {
    std::printf("%-58s %5d %5d in %4.0f ms, slowest %6.1f ms %5d\n", fault, tries, inTime, limit, slowest,
                clean);
    std::fflush(stdout);
    allWell = allWell && inTime == tries && clean == tries;
  }
};

template <typename Action>
Milliseconds timeOf(Action action) {
  const auto begin = Clock::now();
  action();
  return Clock::now() - begin;
}

void tryToStart(Player& player) {
  try {
    player.engine->start(1);
  } catch (const PlatformError&) {
  }
}

void startAndPlay(Player& player) {
  player.engine->start(1);
  EXPECT_TRUE(waitUntil([&] { return player.played > 4800; }));
}

/// From the fault to the end of the session.
template <typename Fault>
Milliseconds untilLost(Player& player, Fault fault) {
  startAndPlay(player);
  fault();
  return timeOf([&] { waitUntil([&] { return !player.engine->isRunning(); }); });
}

void killWhileStarting(int tries) {
  Row row{"the server dies 0 to 2.5 ms after a start has begun", tries, 2500};
  std::mt19937 random(1);
  std::uniform_int_distribution<int> microseconds(0, 2500);
  for (int i = 0; i < tries; ++i) {
    SoundServer server;
    row.add(server, [&](SoundServer&, Player& player) {
      const auto moment = Clock::now() + std::chrono::microseconds(microseconds(random));
      std::thread killer([&] {
        while (Clock::now() < moment) {
        }
        server.kill();
      });
      const Milliseconds taken = timeOf([&] { tryToStart(player); });
      killer.join();
      return taken;
    });
  }
  row.print();
}

void faultsWhileRunning() {
  constexpr int tries = 20;
  Row dies{"the server dies while it plays", tries, 100};
  Row removed{"the output is removed while it plays", tries, 100};
  Row changed{"another output becomes the default one", tries, 100};
  Row stopped{"stopping while the server is frozen", tries, 100};
  Row freezes{"starting while the server is frozen", 5, 2500};
  Row suspended{"starting on an output that was suspended by hand", 5, 2500};
  for (int i = 0; i < tries; ++i) {
    SoundServer server({"first", "second"});
    changed.add(server, [](SoundServer& sound, Player& player) {
      return untilLost(player, [&] { sound.control("set-default-sink second"); });
    });
    server.setDefaultSink("first");
    if (i < suspended.tries && !SoundServer::isPipeWire()) {
      server.control("suspend-sink first 1");
      suspended.add(server, [](SoundServer&, Player& player) { return timeOf([&] { tryToStart(player); }); });
      server.control("suspend-sink first 0");
    }
    stopped.add(server, [](SoundServer& sound, Player& player) {
      startAndPlay(player);
      sound.freeze();
      return timeOf([&] { player.engine->stop(); });
    });
    if (i < freezes.tries)
      freezes.add(server, [](SoundServer&, Player& player) { return timeOf([&] { tryToStart(player); }); });
    server.thaw();
    removed.add(server, [](SoundServer& sound, Player& player) {
      return untilLost(player, [&] { sound.removeSink("first"); });
    });
    dies.add(server,
             [](SoundServer& sound, Player& player) { return untilLost(player, [&] { sound.kill(); }); });
  }
  for (const Row& row : {dies, removed, changed, stopped, freezes})
    row.print();
  if (!SoundServer::isPipeWire()) suspended.print();
}

/// Plays beside two busy loops and an encoder, and looks at what the output got.
void gapsOnABusyMachine(int seconds) {
  const SoundServer server;
  const MonitorRecorder recorder(server, "null", 200);
  server.raisePriority();
  recorder.raisePriority();
  std::vector<std::unique_ptr<RunningProgram>> load;
  for (int i = 0; i < 2; ++i)
    load.push_back(
        std::make_unique<RunningProgram>(std::vector<std::string>{"sh", "-c", "while :; do :; done"}));
  load.push_back(std::make_unique<RunningProgram>(
      std::vector<std::string>{"lame", "-r", "--quiet", "/dev/urandom", "-"}));
  Player player(server);
  player.engine->start(1);
  const std::int64_t wanted = std::int64_t{48000} * seconds;
  waitUntil([&] { return player.played >= wanted; }, std::chrono::seconds(3 * seconds));
  player.engine->stop();
  load.clear();
  const std::vector<float> samples = recorder.samples();
  long gaps = 0, torn = 0;
  double silence = 0, longest = 0, gap = 0, last = 0;
  for (std::size_t i = 0; i < samples.size(); i += 2) {
    const double frame = std::round(static_cast<double>(samples[i]) * signalLength);
    if (frame == 0) {
      gap += last != 0;
      continue;
    }
    if (last != 0 && frame != std::fmod(last, signalLength) + 1) ++torn;
    if (gap != 0) {
      ++gaps;
      silence += gap;
      longest = std::max(longest, gap);
    }
    gap = 0;
    last = frame;
  }
  std::printf("%-58s %4d s: %ld gaps, %.0f ms in all, the longest %.0f ms; %ld frames lost or repeated\n",
              "playing beside two busy loops and an encoder", seconds, gaps, silence / 48, longest / 48,
              torn);
  // PipeWire loses what a client or its own process brings too late for a period.
  allWell = allWell && (torn == 0 || SoundServer::isPipeWire());
}

}  // namespace

}  // namespace zarnet::test

int main(int count, char** arguments) {
  using namespace zarnet::test;
  testing::GTEST_FLAG(throw_on_failure) = true;
  testing::InitGoogleTest(&count, arguments);
  watchdog.watch();
  std::printf("%s\n%-58s %5s %5s                              %5s\n",
              SoundServer::isPipeWire() ? "PipeWire" : "PulseAudio", "fault", "tries", "good", "clean");
  killWhileStarting(count > 1 ? std::stoi(arguments[1]) : 100);
  faultsWhileRunning();
  gapsOnABusyMachine(count > 2 ? std::stoi(arguments[2]) : 60);
  return allWell ? 0 : 1;
}
