// The player on a real audio server with silent outputs, whose monitors are recorded.

#include "playback/AudioPlayer.h"
#include "system/PlatformError.h"
#include "tests/support/ReferencePlayer.h"
#include "tests/support/SoundServer.h"

#include <chrono>
#include <cmath>

#include <gtest/gtest.h>

namespace zarnet {

namespace {

using namespace test;

/// 20 seconds: both versions identify each of their frames and lie on different sides of zero.
PreparedAudio countingComparison() {
  const Signal original = test::counting(48000, 960'000);
  const Signal lossy = {original.rate, {original.planes[1], original.planes[0]}};
  return comparison(original, lossy, 7, {0.9f, 0.8f});
}

bool isPlaying(const AudioPlayer& player) {
  return std::get<bool>(player.status().at("playing"));
}

double position(const AudioPlayer& player) {
  return std::get<double>(player.status().at("position"));
}

/// The first sample that is not 0; 0 when there is none.
float firstSounding(const std::vector<float>& samples) {
  const auto found = std::find_if(samples.begin(), samples.end(), [](float sample) { return sample != 0; });
  return found == samples.end() ? 0 : *found;
}

/// Waits until the player has played 0.3 s more.
void playOn(const AudioPlayer& player) {
  const double end = position(player) + 0.3;
  ASSERT_TRUE(waitUntil([&] { return position(player) > end; }));
}

/// Waits until the sink has played `frames` more frames.
void wait(const MonitorRecorder& recorder, std::size_t frames) {
  const std::size_t end = recorder.count() + frames;
  ASSERT_TRUE(waitUntil([&] { return recorder.count() >= end; }));
}

TEST(PlayerOnAServer, StopsWhereItIsWhenTheOutputChangesAndPlaysOnTheNewOneOnlyWhenToldTo) {
  const struct {
    const char* change;
    std::function<void(SoundServer&)> make;
    std::function<void(SoundServer&, AudioPlayer&)> mend;
    const char* next;
  } cases[] = {
      {"another output", [](SoundServer& server) { server.setDefaultSink("second"); }, {}, "second"},
      {"the output is removed", [](SoundServer& server) { server.removeSink("first"); }, {}, "second"},
      {"the output is suspended", [](SoundServer& server) { server.control("suspend-sink first 1"); },
       [](SoundServer& server, AudioPlayer&) { server.control("suspend-sink first 0"); }, "first"},
      {"the server dies", [](SoundServer& server) { server.kill(); },
       [](SoundServer& server, AudioPlayer& player) {
         EXPECT_THROW(player.play(), PlatformError);
         EXPECT_FALSE(isPlaying(player));
         server.start();
       },
       "first"},
  };
  const PreparedAudio audio = countingComparison();
  for (const auto& [change, make, mend, next] : cases) {
    SCOPED_TRACE(change);
    // PipeWire suspends what nobody plays on, and ignores the rest.
    if (std::string(change) == "the output is suspended" && SoundServer::isPipeWire()) continue;
    SoundServer server({"first", "second"});
    AudioPlayer player(makeAudioEngine(server.address()));
    player.load(audio, true);
    {
      const MonitorRecorder first(server, "first");
      const MonitorRecorder second(server, "second");
      player.play();
      ASSERT_TRUE(waitUntil([&] { return first.last() != 0; }));
      make(server);
      ASSERT_TRUE(waitUntil([&] { return !isPlaying(player); }));
      if (std::string(next) == "second") wait(second, 9600);
      EXPECT_EQ(firstSounding(second.samples()), 0);
    }
    const double kept = position(player);
    EXPECT_GT(kept, 0);
    if (mend) mend(server, player);
    const MonitorRecorder recorder(server, next);
    player.play();
    ASSERT_TRUE(waitUntil([&] { return recorder.last() != 0; }));
    ReferencePlayer expected{audio, true, std::llround(kept * 48000), true};
    EXPECT_EQ(firstSounding(recorder.samples()), expected.frame()[0]);
  }
}

TEST(PlayerOnAServer, ObeysWhileTheServerIsFrozenAndPlaysAgainAfterwards) {
  SoundServer server;
  AudioPlayer player(makeAudioEngine(server.address()));
  const PreparedAudio audio = countingComparison();
  player.load(audio, true);
  player.play();
  playOn(player);
  server.freeze();
  const auto begin = std::chrono::steady_clock::now();
  player.pause();
  player.play();
  player.select("B");
  player.seek(3);
  player.stop();
  player.load(audio, true);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
  EXPECT_FALSE(isPlaying(player));
  server.thaw();
  player.play();
  playOn(player);
}

}  // namespace

}  // namespace zarnet
