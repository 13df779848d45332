#include "audio/AppError.h"
#include "playback/AudioPlayer.h"
#include "system/PlatformError.h"
#include "tests/support/Failures.h"
#include "tests/support/FakeAudioEngine.h"
#include "tests/support/ReferencePlayer.h"
#include "tests/support/Seed.h"

#include <atomic>
#include <cmath>
#include <random>
#include <thread>

#include <gtest/gtest.h>

namespace zarnet {

namespace {

using namespace test;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// A player on a fake engine whose notices wait in a queue for the interface thread.
struct Fixture {
  Fixture()
      : engine(new FakeAudioEngine),
        player(std::make_unique<AudioPlayer>(std::unique_ptr<AudioEngine>(engine),
                                             [this](auto task) { queue.push_back(std::move(task)); })) {}

  void runQueue() {
    for (const auto& task : std::exchange(queue, {}))
      task();
  }

  std::vector<std::function<void()>> queue;
  FakeAudioEngine* const engine;  // the player's
  std::unique_ptr<AudioPlayer> player;
};

Signal constant(float value, std::int64_t frames) {
  return {48000, std::vector(2, std::vector(static_cast<std::size_t>(frames), value))};
}

PreparedAudio track(std::int64_t frames) {
  return comparison(constant(0.5f, frames), constant(-0.25f, 1));
}

double atFrame(std::int64_t frame) {
  return static_cast<double>(frame) / 48000;
}

PlayerStatus status(double position, bool playing, double duration, double loopStart, double loopEnd) {
  return {{"position", position},
          {"playing", playing},
          {"duration", duration},
          {"loopStart", loopStart},
          {"loopEnd", loopEnd}};
}

TEST(AudioPlayer, ReportsItsWholeStateInEveryState) {
  Fixture f;
  EXPECT_EQ(test::failureOf<AppError>([&] { f.player->play(); }), "Choose a track first.");
  f.player->setLoop(true, 1.0, 2.0);
  EXPECT_EQ(f.player->status(), status(42, false, 0, 42, 54));
  PreparedAudio audio = track(24000);
  const std::weak_ptr<const PCM> original = audio.original;
  f.player->load(std::move(audio), true);
  f.engine->startError = "No audio output is available. It is being mended.";
  EXPECT_THROW(f.player->play(), PlatformError);
  EXPECT_EQ(f.player->status(), status(0, false, 0.5, 0, 0.5));
  f.engine->startError.reset();
  f.player->play();
  f.engine->render(12000);
  EXPECT_EQ(f.player->status(), status(0.25, true, 0.5, 0, 0.5));
  f.player->pause();
  EXPECT_TRUE(f.engine->isRunning());
  EXPECT_EQ(f.player->status(), status(0.25, false, 0.5, 0, 0.5));
  f.player->stop();
  EXPECT_FALSE(f.engine->isRunning());
  EXPECT_TRUE(original.expired());
  EXPECT_EQ(f.player->status(), status(0, false, 0, 0, 0.5));
}

TEST(AudioPlayer, KeepsSeeksAndLoopsWithinTheTrack) {
  constexpr std::int64_t count = 48'000;
  const struct {
    const char* name;
    double seek;
    bool enabled;
    std::optional<double> start, end;
    std::int64_t position, loopStart, loopEnd;
  } cases[] = {
      {"within a frame", 2400.999 / 48000, false, {}, {}, 2400, 0, count},
      {"after the track", 1e300, false, {}, {}, count, 0, count},
      {"not a number stays", notANumber, false, {}, {}, 1440, 0, count},
      {"a position at the end is outside", 0.5, true, 0.25, 0.5, 12'000, 12'000, 24'000},
      {"switched off, nothing moves", 0.75, false, 0.25, 0.5, 36'000, 12'000, 24'000},
      {"both beyond the track", 0, true, 20.0, 30.0, count - 1, count - 1, count},
      {"beyond any integer", 0.5, true, -1e300, 1e300, 24'000, 0, count},
      {"equal bounds keep the old ones", 0.25, true, 0.5, 0.5, 12'000, 0, count},
      {"not a number keeps the old bounds", 1, true, notANumber, 0.5, 0, 0, count},
  };
  for (const auto& [name, seek, enabled, start, end, position, loopStart, loopEnd] : cases) {
    Fixture f;
    f.player->load(track(count), true);
    f.player->seek(0.03);
    f.player->seek(seek);
    f.player->setLoop(enabled, start, end);
    EXPECT_EQ(f.player->status(), status(atFrame(position), false, 1, atFrame(loopStart), atFrame(loopEnd)))
        << name;
  }
  // The loop that a track begins with.
  for (const auto& [frames, start, end] : std::vector<std::array<std::int64_t, 3>>{
           {1, 0, 1}, {48'001, 1, 48'001}, {2'592'001, 2'016'000, 2'592'000}}) {
    Fixture f;
    f.player->load(track(frames), true);
    EXPECT_EQ(f.player->status(), status(0, false, atFrame(frames), atFrame(start), atFrame(end)));
  }
}

TEST(AudioPlayer, StopsAdvancingWhenTheOutputChangesUnlessANewerPlayHasOvertakenTheNotice) {
  Fixture f;
  f.player->load(track(48000), true);
  f.player->setVolume(notANumber);
  f.player->play();
  EXPECT_GT(f.engine->render(4800).left.back(), 0) << "no volume that is no number";
  f.engine->loseDevice();
  f.runQueue();
  EXPECT_EQ(f.player->status(), status(0.1, false, 1, 0, 1));

  f.player->play();
  f.engine->loseDevice();
  f.player->play();
  f.runQueue();
  EXPECT_EQ(f.player->status(), status(0.1, true, 1, 0, 1)) << "the notice was stale";

  f.engine->loseDevice();
  f.engine->startError = "No audio output is available. It has just gone.";
  EXPECT_THROW(f.player->play(), PlatformError);
  f.runQueue();
  EXPECT_EQ(f.player->status(), status(0.1, false, 1, 0, 1)) << "no newer session has begun";

  f.engine->startError.reset();
  f.player->play();
  f.engine->loseDevice();
  f.player.reset();
  f.runQueue();
}

TEST(AudioPlayer, RendersLikeTheScalarFormBitForBitThroughAnyOrderOfOperations) {
  std::mt19937 random(testSeed());
  const auto below = [&](std::int64_t limit) {
    return std::uniform_int_distribution<std::int64_t>(0, limit - 1)(random);
  };
  const auto within = [](std::int64_t frame) { return atFrame(frame) + 0.5 / 48000; };

  for (int track = 0; track < 40; ++track) {
    const std::int64_t count = 1 + below(track % 4 == 0 ? 20 : 4000);
    const PreparedAudio audio =
        comparison(test::noise(48000, 2, count, 0.9, 1), test::noise(48000, 2, 1 + below(4000), 0.9, 2),
                   below(601) - 300, {0.25f + 0.001f * static_cast<float>(below(999)), 0.7f});
    Fixture f;
    AudioPlayer& player = *f.player;
    ReferencePlayer reference{audio, below(2) == 0};
    player.load(audio, reference.losslessA);
    player.play();
    reference.running = true;
    for (int operation = 0; operation < 60; ++operation) {
      SCOPED_TRACE("track " + std::to_string(track) + ", operation " + std::to_string(operation));
      switch (below(8)) {
        case 0:
          reference.selectedA = below(2) == 0;
          player.select(reference.selectedA ? "A" : "B");
          break;
        case 1:
          reference.position = below(count + 1);
          reference.fade = 0;
          player.seek(within(reference.position));
          break;
        case 2:
          reference.looping = below(3) != 0;
          reference.loopStart = below(count);
          reference.loopEnd = reference.loopStart + 1 + below(count - reference.loopStart);
          player.setLoop(reference.looping, within(reference.loopStart), within(reference.loopEnd));
          if (reference.looping &&
              (reference.position < reference.loopStart || reference.position >= reference.loopEnd)) {
            reference.position = reference.loopStart;
            reference.fade = 0;
          }
          break;
        case 3:
          reference.volume = 0.01f * static_cast<float>(below(141) - 20);
          player.setVolume(reference.volume);
          reference.volume = std::clamp(reference.volume, 0.0f, 1.0f);
          break;
        case 4:
          player.pause();
          reference.running = false;
          break;
        case 5:
          player.play();
          if (reference.position >= count) reference.position = 0;
          reference.running = true;
          reference.fade = 0;
          break;
        default:
          break;
      }
      const std::int64_t frames = 1 + below(700);
      const bool paused = !reference.running;
      const auto actual = f.engine->render(frames);
      ASSERT_EQ(actual.silence, paused);
      for (std::size_t i = 0; i < actual.left.size(); ++i) {
        const auto expected = paused ? std::array<float, 2>{0, 0} : reference.frame();
        ASSERT_EQ((std::array{actual.left[i], actual.right[i]}), expected) << "frame " << i;
      }
      ASSERT_EQ(std::get<double>(player.status().at("position")), atFrame(reference.position));
    }
  }
}

TEST(AudioPlayer, TakesOperationsAtAnyMomentWhileFramesAreRenderedAndDevicesLost) {
  std::mt19937 random(testSeed());
  auto owned = std::make_unique<FakeAudioEngine>();
  FakeAudioEngine& engine = *owned;
  AudioPlayer player(std::move(owned));
  const PreparedAudio tracks[] = {track(1000), comparison(constant(1, 30'000), constant(-1, 20'000), -300)};
  player.load(tracks[0], true);
  std::atomic<bool> done = false;
  std::atomic<int> buffers = 0;
  std::thread audioThread([&] {
    while (!done) {
      for (const float sample : engine.render(64 + buffers % 500).left)
        if (sample != 99 && !(std::abs(sample) <= 1)) ADD_FAILURE() << sample;
      if (++buffers % 50 == 0) engine.loseDevice();
    }
  });
  const auto coin = [&] { return random() % 2 == 0; };
  const std::function<void(double)> operations[] = {
      [&](double) { player.load(tracks[coin() ? 0 : 1], coin()); },
      [&](double) { coin() ? player.pause() : player.stop(); },
      [&](double time) { player.seek(time); },
      [&](double time) { player.setLoop(coin(), time, time + 0.1); },
      [&](double time) { player.setVolume(time); },
      [&](double) { player.select(coin() ? "A" : "B"); },
      [&](double) { EXPECT_EQ(player.status().size(), 5u); },
  };
  for (int operation = 0; operation < 20'000 || buffers < 200; ++operation) {
    operations[random() % std::size(operations)](static_cast<double>(random() % 1000) / 1000);
    if (std::get<double>(player.status().at("duration")) == 0) player.load(tracks[1], true);
    if (coin()) player.play();
  }
  done = true;
  audioThread.join();
}

}  // namespace

}  // namespace zarnet
