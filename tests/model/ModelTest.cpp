#include "model/LosslessSide.h"
#include "model/TrackMetadata.h"
#include "results/ResultsImage.h"
#include "tests/model/ModelFixture.h"
#include "tests/support/Seed.h"

#include <random>

namespace zarnet {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(Models, ImportEachAcceptedFileOnceInOrderAndTellAboutTheOthers) {
  const auto first = track("first").url;
  const auto second = track("second").url;
  runScript(scratch.path(), "ffmpeg -i first.wav lossy.mp3");
  const auto titlesAfter = [&](const std::vector<std::filesystem::path>& files) {
    model->importFiles(files);
    EXPECT_TRUE(model->importing && !model->canStart());
    EXPECT_TRUE(eventually([&] { return !model->importing; }));
    std::vector<QString> titles;
    for (const Song& song : model->songs())
      titles.push_back(song.title);
    return titles;
  };
  EXPECT_THAT(titlesAfter({second, first, scratch / "." / "tmp" / ".." / "second.wav"}),
              ElementsAre("second", "first"));
  EXPECT_EQ(model->error, std::nullopt);
  EXPECT_THAT(titlesAfter({scratch / "lossy.mp3", second, scratch / "gone.wav"}),
              ElementsAre("second", "first"));
  EXPECT_EQ(model->error,
            "lossy.mp3 is already lossy. Choose its original WAV, AIFF, FLAC or Apple Lossless file.\n\n"
            "“gone.wav” could not be opened: No such file or directory.");
}

TEST_F(Models, ChangeNothingWhereAnOperationMayNotBegin) {
  const std::pair<const char*, std::function<void()>> states[] = {
      {"busy", [&] { model->busy = true; }},
      {"importing", [&] { model->importing = true; }},
      {"listen", [&] { model->stage = Stage::listen; }},
      {"reveal", [&] { model->stage = Stage::reveal; }},
  };
  for (const auto& [name, enter] : states) {
    makeModel();
    model->playlist = {track("X")};
    enter();
    watch();
    model->choose();
    model->importFiles({track("new").url});
    model->remove(track("X"));
    model->clearSongs();
    if (*model->stage == Stage::setup) model->start();
    model->confirm();
    if (model->busy) model->back();
    model->exportAudio();
    EXPECT_THAT(changes, IsEmpty()) << name;
    EXPECT_EQ(sheets.count(), 0U) << name;
  }
  makeModel();
  model->playlist = {track("X")};
  watch();
  model->start();
  sheets.alerts.at(0).done(1);
  EXPECT_THAT(changes, IsEmpty()) << "not continued";
}

// A death test, by its name, comes before any thread is started; a model starts some.
TEST(SettingsDeathTest, GoOnInAnotherProcess) {
  const ScratchFolder scratch;
  const auto file = scratch / "new folder" / "defaults.json";
  const auto damaged = scratch / "damaged.json";
  const auto settings = [&](const std::filesystem::path& at, bool change) {
    NativeModel model(scratch.path(), std::make_unique<FakeAudioEngine>(), Defaults(at));
    if (!change) return (model.glass ? "glass " : "plain ") + *model.appearance;
    model.glass = false;
    model.appearance = "dark";
    std::_Exit(0);
  };
  writeFile(damaged, "{damaged");
  EXPECT_EXIT(settings(file, true), testing::ExitedWithCode(0), "");
  EXPECT_EXIT(settings(damaged, true), testing::ExitedWithCode(0), "");
  EXPECT_EQ(settings(file, false), "plain dark");
  EXPECT_EQ(settings(damaged, false), "plain dark") << "a damaged file is replaced";
  writeFile(file, R"({"liquidGlass": "false", "appearance": "light"})");
  EXPECT_EQ(settings(file, false), "glass light") << "a text is no boolean";
  writeFile(file, "{damaged");
  EXPECT_EQ(settings(file, false), "glass system");
}

TEST(TrackMetadata, IsTheFirstTextThatIsLeftOfTheContainersFieldsThenID3ThenPlainInfo) {
  const TagFields id3{{"id3"}, {"id3"}, {"\n"}};
  const TagFields info{{"info"}, {"info"}, {"info"}};
  const std::pair<MediaTags, TrackMetadata> cases[] = {
      {{{{" ", "second"}, {"\u200b\x01"}, {"  \u2028 "}}, id3, info}, {"second", "id3", "info"}},
      {{{{"\t"}, {""}, {}}, {}, {}}, {"Name", std::nullopt, std::nullopt}},
      {{{{"Live\r\nVersion"}, {"\u00a0 \tzero\u200dwidth\u3000"}, {"tagged\U000e0041🎧"}}, {}, {}},
       {"Live  Version", "zero width", "tagged 🎧"}},
  };
  for (const auto& [tags, expected] : cases) {
    const TrackMetadata metadata = trackMetadata(tags, "/music/Name.flac");
    EXPECT_EQ(std::tie(metadata.title, metadata.artist, metadata.album),
              std::tie(expected.title, expected.artist, expected.album));
  }
}

TEST_F(Models, PlayTheTracksInOrderWithFrozenSettingsToTheTally) {
  model->rate = 128;
  begin({"X", "Y", "Z"});
  model->codec = "MP3";
  EXPECT_EQ(model->rate, 128) << "the new codec has it too";
  model->rate = 8;
  model->codec = "Ogg Vorbis";
  EXPECT_EQ(model->rate, 64);
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
  EXPECT_EQ(conversions(), 1) << "only the comparison on screen is kept";

  vote("same");
  ASSERT_TRUE(prepared());
  vote("A");
  EXPECT_THAT(answers(), ElementsAre("XB", "Ysame", "ZA"));
  EXPECT_EQ(loaded(), 0) << "the player is empty";
  EXPECT_THAT(workspace(), IsEmpty());
}

TEST_F(Models, StayOnTheirTrackWhenTheNextOneIsCancelledOrFails) {
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
    EXPECT_EQ(loaded(), 0.5);
    EXPECT_EQ(conversions(), 1);
  }
  programs.replace("afconvert", R"(real "$@")");
  vote("B");
  ASSERT_TRUE(prepared());
  EXPECT_THAT(answers(), ElementsAre("XB"));
}

TEST_F(Models, DiscardAComparisonThatIsReadyWhenItIsNoLongerWanted) {
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

TEST_F(Models, RevealASingleTrackAndGiveItsFilesToTheUser) {
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
  sheets.savePanels.at(0).done(scratch / "gone" / "new.m4a");
  EXPECT_EQ(model->error, "“new.m4a” could not be written: No such file or directory.");

  model->playPause();
  const QString side = *model->lossless;
  vote(side);
  EXPECT_FALSE(plays());
  EXPECT_EQ(model->stage, Stage::reveal);
  EXPECT_EQ(loaded(), 0.5) << "the comparison can still be heard";
  EXPECT_THAT(workspace(), IsEmpty());
  model->saveResults();
  model->back();
  sheets.savePanels.at(1).done(scratch / "results.png");
  EXPECT_EQ(readFile(scratch / "results.png"),
            renderResultsPNG({{"X", side, side}}, "AAC", 256, true).toStdString())
      << "the results as they were when the user asked";
}

TEST_F(Models, HandVolumeAndLoopToThePlayerAtOnce) {
  begin({"X"});
  ASSERT_TRUE(prepared());
  model->volume = 0.0;
  model->playPause();
  EXPECT_EQ(engine->render(480).left.back(), 0);
  model->volume = 1.0;
  EXPECT_NE(engine->render(480).left.back(), 0);

  const auto bounds = [&] { return std::pair(*model->loopStart, *model->loopEnd); };
  const auto place = [&](double duration, double position, double start, double end) {
    model->duration = duration;
    model->position = position;
    model->loopStart = start;
    model->loopEnd = end;
  };
  const struct {
    double duration, position, start, end;
    std::pair<double, double> afterStart, afterEnd;
  } cases[] = {
      {60, 60, 10, 30, {59.95, 60}, {10, 60}},      {60, 0, 10, 30, {0, 30}, {0, 0.05}},
      {60, 29.5, 10, 30, {29.5, 30.5}, {10, 29.5}}, {60, 10.5, 10, 30, {10.5, 30}, {9.5, 10.5}},
      {0.02, 0.01, 0, 0.02, {0, 0.02}, {0, 0.05}},
  };
  for (const auto& [duration, position, start, end, afterStart, afterEnd] : cases) {
    place(duration, position, start, end);
    model->setLoopStart();
    EXPECT_EQ(bounds(), afterStart) << position << " of " << duration;
    place(duration, position, start, end);
    model->setLoopEnd();
    EXPECT_EQ(bounds(), afterEnd) << position << " of " << duration;
  }

  model->duration = 0.5;
  model->loopStart = 0.25;
  model->loopEnd = 0.5;
  model->player.seek(0.1);
  model->setLoop(true);
  EXPECT_EQ(std::get<double>(model->player.status().at("position")), 0.25) << "into the loop";
  model->setLoop(false);
  model->seek(0.1);
  EXPECT_EQ(std::get<double>(model->player.status().at("position")), 0.1) << "out of it";
  model->setLoopEnd();
  EXPECT_EQ(std::get<double>(model->player.status().at("loopEnd")), 0.1);
}

TEST_F(Models, NameTheirPanelsAndDrawTheResultsOfTheSettingsThatWereTested) {
  model->choose();
  EXPECT_EQ(sheets.openPanels.at(0).panel.title, "Choose lossless audio");
  begin({"X"});
  model->codec = "MP3";
  model->rate = 8;
  model->match = false;
  ASSERT_TRUE(prepared());
  model->exportAudio();
  EXPECT_EQ(sheets.savePanels.at(0).panel.title, "Export Converted Audio");
  vote("same");
  EXPECT_EQ(model->exportURL, std::nullopt) << "nothing is left to export";
  EXPECT_EQ(model->exportName, "");
  model->exportAudio();
  EXPECT_EQ(sheets.savePanels.size(), 1U);
  EXPECT_EQ(model->resultsPNG(), renderResultsPNG({{"X", "same", *model->lossless}}, "AAC", 256, true));
  model->saveResults();
  EXPECT_EQ(sheets.savePanels.at(1).panel.title, "Save Results Image");
  EXPECT_THAT(
      sheets.savePanels.at(1).panel.name.toStdString(),
      testing::MatchesRegex("Zarnet Results [0-9]{4}-[0-9]{2}-[0-9]{2} [0-9]{2}-[0-9]{2}-[0-9]{2}[.]png"));
}

TEST_F(Models, KeepAnEarlierErrorThroughAGoodImport) {
  model->error = "earlier";
  model->importFiles({track("good").url});
  ASSERT_TRUE(eventually([&] { return !model->importing; }));
  EXPECT_EQ(model->songs().size(), 1U);
  EXPECT_EQ(model->error, "earlier");
}

TEST_F(Models, TakeNoAnswerOfASheetThatOutlivesThem) {
  model->choose();
  begin({"X"});
  ASSERT_TRUE(prepared());
  model->exportAudio();
  vote("A");
  model->saveResults();
  model.reset();
  sheets.openPanels.at(0).done({scratch / "X.wav"});
  sheets.alerts.at(0).done(0);
  for (auto& panel : sheets.savePanels)
    panel.done(scratch / "written");
  EXPECT_FALSE(exists(scratch / "written"));
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

TEST_F(Models, SurviveBeingCancelledQuitAndRestartedAtAnyMoment) {
  std::mt19937 random(testSeed());
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
