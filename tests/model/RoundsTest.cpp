#include "model/LosslessSide.h"
#include "tests/model/ModelFixture.h"

#include <cmath>
#include <random>

namespace zarnet {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

class Rounds : public Models {
 protected:
  std::vector<std::string> titles() const {
    std::vector<std::string> all;
    for (const Vote& answer : *model->answers)
      all.push_back((answer.title + answer.choice).toStdString());
    return all;
  }
};

TEST_F(Rounds, PlayTheTracksInOrderWithFrozenSettingsToTheTally) {
  model->codec = "AAC";
  model->rate = 128;
  model->match = false;
  programs.hold(true);
  begin({"X", "Y", "Z"});
  model->codec = "MP3";
  model->rate = 8;
  model->match = true;
  model->playlist = {track("W")};
  model->playlist = {};
  programs.hold(false);
  ASSERT_TRUE(prepared());
  EXPECT_EQ(model->stage, Stage::listen);
  EXPECT_EQ(model->exportName, "X - AAC 128 kbps.m4a");

  const std::filesystem::path first = *model->exportURL;
  model->confirm();
  EXPECT_FALSE(model->busy) << "nothing without an answer";
  model->vote = "B";
  model->select("B");
  model->confirm();
  EXPECT_THAT(titles(), IsEmpty()) << "an answer counts when the next comparison is loaded";
  std::vector<std::string> changes;
  const Subscription recorder = record(changes);
  ASSERT_TRUE(prepared());
  std::erase(changes, "progress");
  EXPECT_THAT(changes, ElementsAre("busy", "answers", "index", "lossless", "selected", "duration",
                                   "originalDescription", "loopStart", "loopEnd", "loop", "stage"));
  EXPECT_THAT(titles(), ElementsAre("XB"));
  EXPECT_EQ(model->selected, "A");
  EXPECT_FALSE(std::filesystem::exists(first)) << "only the comparison on screen is kept";
  EXPECT_EQ(conversions(), 1U);

  model->vote = "same";
  model->confirm();
  ASSERT_TRUE(prepared());
  EXPECT_EQ(model->current()->title, "Z");
  model->vote = "A";
  changes.clear();
  model->confirm();
  EXPECT_THAT(changes, ElementsAre("answers", "stage"));
  EXPECT_THAT(titles(), ElementsAre("XB", "Ysame", "ZA"));
  EXPECT_EQ(model->stage, Stage::tally);
  EXPECT_EQ(std::get<double>(model->player.status().at("duration")), 0.0) << "the player is empty";
  EXPECT_THAT(workspace(), IsEmpty());
}

TEST_F(Rounds, TakeABitrateOfTheNewCodecOnlyWhereItLacksTheOld) {
  const std::tuple<const char*, int, const char*, int> cases[] = {
      {"MP3", 8, "Ogg Vorbis", 64}, {"AAC", 320, "MP3", 320}, {"Ogg Vorbis", 96, "AAC", 96}};
  for (const auto& [codec, rate, next, expected] : cases) {
    model->codec = codec;
    model->rate = rate;
    model->codec = next;
    EXPECT_EQ(model->rate, expected) << codec << " to " << next;
  }
}

TEST_F(Rounds, RevealASingleTrackAndKeepItLoaded) {
  const auto plays = [&] { return std::get<bool>(model->player.status().at("playing")); };
  model->volume = 0.0;
  begin({"X"});
  ASSERT_TRUE(prepared());
  engine->startError = "No audio output is available.";
  model->playPause();
  EXPECT_EQ(model->error, "No audio output is available.");
  engine->startError.reset();
  model->playPause();
  EXPECT_TRUE(plays());
  EXPECT_EQ(engine->render(480).left.back(), 0) << "the volume was handed on";
  model->exportAudio();
  EXPECT_FALSE(plays());
  model->playPause();
  model->vote = *model->lossless;
  model->confirm();
  EXPECT_FALSE(plays());
  EXPECT_EQ(model->stage, Stage::reveal);
  ASSERT_EQ(model->answers->size(), 1U);
  EXPECT_EQ(model->answers->front().preference(), "Lossless preferred");
  EXPECT_EQ(std::get<double>(model->player.status().at("duration")), 0.5);
  EXPECT_THAT(workspace(), IsEmpty());
  model->exportURL = scratch / "mine" / "song.m4a";
  model->discardCurrentConversion();
  EXPECT_EQ(model->error,
            "Could not remove temporary audio: Refusing to remove audio outside Zarnet’s temporary folder.");
}

TEST_F(Rounds, StayOnTheirTrackWhenTheNextOneFails) {
  begin({"X", "Y"});
  ASSERT_TRUE(prepared());
  programs.fail(true);
  model->vote = "A";
  model->confirm();
  EXPECT_EQ(model->vote, std::nullopt) << "to be given again";
  model->back();  // not while it runs
  ASSERT_TRUE(prepared());
  EXPECT_EQ(model->error, "Audio conversion failed. No luck.\n");
  EXPECT_EQ(model->stage, Stage::listen);
  EXPECT_EQ(model->index, 0);
  EXPECT_THAT(titles(), IsEmpty());
  EXPECT_EQ(std::get<double>(model->player.status().at("duration")), 0.5);
  EXPECT_TRUE(std::filesystem::exists(*model->exportURL));
  EXPECT_EQ(conversions(), 1U);
  programs.fail(false);
  model->vote = "B";
  model->confirm();
  ASSERT_TRUE(prepared());
  EXPECT_THAT(titles(), ElementsAre("XB"));
}

TEST_F(Rounds, StayWhereTheyWereWhenTheyAreCancelled) {
  programs.hold(true);
  begin({"X"});
  ASSERT_TRUE(eventually([&] { return programs.started(); }));
  model->cancel();
  ASSERT_TRUE(prepared());
  EXPECT_EQ(model->progress, "Cancelling…");
  EXPECT_EQ(model->error, std::nullopt);
  EXPECT_EQ(model->stage, Stage::setup);
  EXPECT_EQ(conversions(), 0U);
  EXPECT_EQ(livingChildren(), 0);
  programs.hold(false);
  begin({"X"});
  ASSERT_TRUE(prepared());
  EXPECT_EQ(model->stage, Stage::listen) << "a cancelled preparation does not spoil the next one";
}

TEST_F(Rounds, DiscardAComparisonThatIsReadyWhenItIsNoLongerWanted) {
  // The last moment: the comparison is there and about to be loaded.
  const std::pair<const char*, std::function<void()>> endings[] = {{"cancel", [&] { model->cancel(); }},
                                                                   {"cleanup", [&] { model->cleanup(); }}};
  for (const auto& [name, end] : endings) {
    makeModel();
    begin({"X"});
    const Subscription late = model->willChange.subscribe([&, &finish = end](const Property& property) {
      if (&property == &model->busy) finish();
    });
    ASSERT_TRUE(prepared());
    runPendingEvents();
    EXPECT_EQ(model->stage, Stage::setup) << name;
    EXPECT_EQ(model->error, std::nullopt) << name;
    EXPECT_EQ(conversions(), 0U) << name;
    EXPECT_EQ(std::get<double>(model->player.status().at("duration")), 0.0) << name;
  }
}

TEST(LosslessSide, IsDrawnEvenlyAndIndependently) {
  constexpr int draws = 10'000;
  int lefts = 0;
  int changes = 0;
  QString before = drawnLosslessSide();
  for (int i = 0; i < draws; ++i) {
    const QString side = drawnLosslessSide();
    ASSERT_TRUE(side == "A" || side == "B");
    lefts += side == "A" ? 1 : 0;
    changes += std::exchange(before, side) == side ? 0 : 1;
  }
  // Each count of n fair coins lies within 4 sigma of n / 2 with probability 0.99994; sigma is √n / 2.
  for (const int count : {lefts, changes})
    EXPECT_LE(std::abs(count - draws / 2), 2 * std::sqrt(draws));
}

TEST_F(Rounds, SurviveBeingCancelledQuitAndRestartedAtAnyMoment) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const auto upTo = [&](unsigned limit) { return static_cast<int>(random() % limit); };
  for (int life = 0; life < 12; ++life) {
    makeModel();
    for (int action = 0; action < 8; ++action) {
      switch (upTo(6)) {
        case 0:
          model->cancel();
          break;
        case 1:
          model->back();
          break;
        case 2:
          model->vote = "same";
          model->confirm();
          break;
        case 3:
          model->importFiles({scratch / "X.wav", scratch / "Y.wav", scratch / "missing.wav"});
          break;
        default:
          begin({"X", "Y", "Z"});
      }
      QTimer pause;
      pause.setSingleShot(true);
      pause.start(upTo(30));
      ASSERT_TRUE(eventually([&] { return !pause.isActive(); }));
    }
    if (upTo(2) == 0) {
      model->cancel();
      ASSERT_TRUE(prepared());
      EXPECT_LE(conversions(), *model->stage == Stage::listen ? 1U : 0U);
    }
    if (upTo(3) > 0) model->cleanup();
    model.reset();
    EXPECT_EQ(livingChildren(), 0);
    EXPECT_THAT(workspace(), IsEmpty());
  }
}

}  // namespace
}  // namespace zarnet
