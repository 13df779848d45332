#include "model/LosslessSide.h"
#include "results/ResultsImage.h"
#include "tests/model/ModelFixture.h"

#include <QDeadlineTimer>
#include <cmath>
#include <random>

namespace zarnet {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

class Rounds : public Models {
 protected:
  std::vector<QString> answers() const {
    std::vector<QString> all;
    for (const Vote& answer : *model->answers)
      all.push_back(answer.title + answer.choice);
    return all;
  }
  void vote(const QString& choice) {
    model->vote = choice;
    model->confirm();
  }
};

TEST_F(Rounds, PlayTheTracksInOrderWithFrozenSettingsToTheTally) {
  model->rate = 128;
  begin({"X", "Y", "Z"});
  model->codec = "MP3";
  model->rate = 8;
  model->playlist = {};
  ASSERT_TRUE(prepared());
  EXPECT_EQ(model->exportName, "X - AAC 128 kbps.m4a");

  model->select("B");
  vote("B");
  EXPECT_THAT(answers(), IsEmpty()) << "an answer counts when the next comparison is loaded";
  watch();
  ASSERT_TRUE(prepared());
  NativeModel& m = *model;
  std::erase(changes, &m.progress);
  EXPECT_THAT(changes, ElementsAre(&m.busy, &m.answers, &m.index, &m.lossless, &m.selected, &m.duration,
                                   &m.originalDescription, &m.loopStart, &m.loopEnd, &m.loop, &m.stage));
  EXPECT_THAT(answers(), ElementsAre("XB"));
  EXPECT_EQ(m.selected, "A");
  EXPECT_EQ(conversions(), 1) << "only the comparison on screen is kept";

  vote("same");
  ASSERT_TRUE(prepared());
  vote("A");
  EXPECT_THAT(answers(), ElementsAre("XB", "Ysame", "ZA"));
  EXPECT_EQ(m.stage, Stage::tally);
  EXPECT_EQ(loaded(), 0) << "the player is empty";
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

TEST_F(Rounds, StayOnTheirTrackWhenTheNextOneIsCancelledOrFails) {
  begin({"X", "Y"});
  ASSERT_TRUE(prepared());
  const std::filesystem::path started = scratch / "started";
  for (const bool cancelled : {true, false}) {
    programs.replace("afconvert", "touch " + started.string() +
                                      (cancelled ? "; exec sleep 600" : "; echo No luck.; exit 3"));
    vote("A");
    EXPECT_EQ(model->vote, std::nullopt) << "to be given again";
    ASSERT_TRUE(eventually([&] { return std::filesystem::exists(started); }));
    if (cancelled) model->cancel();
    model->back();  // not while it runs
    ASSERT_TRUE(prepared());
    EXPECT_EQ(model->progress == "Cancelling…", cancelled);
    EXPECT_EQ(model->error->value_or(""), cancelled ? "" : "Audio conversion failed. No luck.\n");
    EXPECT_EQ(model->stage, Stage::listen);
    EXPECT_THAT(answers(), IsEmpty());
    EXPECT_EQ(loaded(), 0.5);
    EXPECT_EQ(conversions(), 1);
    EXPECT_EQ(livingChildren(), 0);
  }
  programs.replace("afconvert", R"(real "$@")");
  vote("B");
  ASSERT_TRUE(prepared());
  EXPECT_THAT(answers(), ElementsAre("XB"));
}

TEST_F(Rounds, DiscardAComparisonThatIsReadyWhenItIsNoLongerWanted) {
  for (const bool atTheEnd : {false, true}) {
    makeModel();
    begin({"X"});
    // The last moment: the comparison is there and about to be loaded.
    watcher = model->willChange.subscribe([&](const Property& property) {
      if (&property == &model->busy) atTheEnd ? model->cleanup() : model->cancel();
    });
    ASSERT_TRUE(prepared());
    runPendingEvents();
    EXPECT_EQ(model->stage, Stage::setup);
    EXPECT_EQ(model->error, std::nullopt);
    EXPECT_EQ(conversions(), 0);
    EXPECT_EQ(loaded(), 0);
  }
}

TEST_F(Rounds, RevealASingleTrackAndGiveItsFilesToTheUser) {
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
  const auto save = sheets.savePanels.at(0).done;
  save(scratch / "gone" / "new.m4a");
  EXPECT_EQ(model->error, "“new.m4a” could not be written: No such file or directory.");
  EXPECT_TRUE(std::filesystem::remove(*model->exportURL)) << "the encoded file is lost";
  save(scratch / "new.m4a");
  EXPECT_EQ(model->error, "“AAC-256.m4a” could not be opened: No such file or directory.");

  model->playPause();
  const QString side = *model->lossless;
  vote(side);
  EXPECT_FALSE(plays());
  EXPECT_EQ(model->stage, Stage::reveal);
  EXPECT_EQ(loaded(), 0.5) << "the comparison can still be heard";
  EXPECT_THAT(workspace(), IsEmpty());
  model->saveResults();
  model->exportURL = scratch / "mine" / "song.m4a";
  model->discardCurrentConversion();
  EXPECT_EQ(model->error,
            "Could not remove temporary audio: Refusing to remove audio outside Zarnet’s temporary folder.");
  model->back();
  sheets.savePanels.at(1).done(scratch / "results.png");
  EXPECT_EQ(readFile(scratch / "results.png"),
            renderResultsPNG({{"X", side, side}}, "AAC", 256, true).toStdString())
      << "the results as they were when the user asked";
}

TEST(LosslessSide, IsDrawnEvenlyAndIndependently) {
  constexpr int draws = 10'000;
  int lefts = 0;
  int repeats = 0;
  QString before = drawnLosslessSide();
  for (int i = 0; i < draws; ++i) {
    const QString side = drawnLosslessSide();
    lefts += side == "A" ? 1 : 0;
    repeats += std::exchange(before, side) == side ? 1 : 0;
  }
  // Each count of n fair coins lies within 4 sigma of n / 2 with probability 0.99994; sigma is √n / 2.
  for (const int count : {lefts, repeats})
    EXPECT_LE(std::abs(count - draws / 2), 2 * std::sqrt(draws));
}

TEST_F(Rounds, SurviveBeingCancelledQuitAndRestartedAtAnyMoment) {
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  const auto upTo = [&](unsigned limit) { return static_cast<int>(random() % limit); };
  const std::function<void()> actions[] = {
      [&] { model->cancel(); },        [&] { model->back(); },
      [&] { vote("same"); },           [&] { model->importFiles({scratch / "X.wav"}); },
      [&] { begin({"X", "Y", "Z"}); }, [&] { begin({"X"}); },
  };
  for (int life = 0; life < 12; ++life) {
    makeModel();
    for (int action = 0; action < 8; ++action) {
      actions[upTo(std::size(actions))]();
      const QDeadlineTimer pause(upTo(30));
      ASSERT_TRUE(eventually([&] { return pause.hasExpired(); }));
    }
    if (upTo(3) > 0) model->cleanup();
    model.reset();
    EXPECT_EQ(livingChildren(), 0);
    EXPECT_THAT(folderEntries(temporary), IsEmpty());
  }
}

}  // namespace
}  // namespace zarnet
