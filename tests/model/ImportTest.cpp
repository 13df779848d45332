#include "model/TrackMetadata.h"
#include "tests/model/ModelFixture.h"

namespace zarnet {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

class Import : public Models {
 protected:
  std::vector<QString> titlesAfter(const std::vector<std::filesystem::path>& files) {
    model->importFiles(files);
    model->importFiles({scratch / "while another import runs.wav"});
    EXPECT_TRUE(model->importing && !model->canStart());
    EXPECT_TRUE(eventually([this] { return !model->importing; }));
    std::vector<QString> titles;
    for (const Song& song : model->songs())
      titles.push_back(song.title);
    return titles;
  }
};

TEST_F(Import, AddsEachAcceptedFileOnceInOrderAndTellsAboutTheOthers) {
  const auto first = track("first").url;
  const auto second = track("second").url;
  const auto empty = writeWave(scratch / "empty.wav", sine(48000, 2, 0, 440, 0.5));
  runScript(scratch.path(), "ffmpeg -i first.wav lossy.mp3");
  model->error = "earlier";
  EXPECT_THAT(titlesAfter({second, first, scratch / "." / "tmp" / ".." / "second.wav"}),
              ElementsAre("second", "first"));
  EXPECT_EQ(model->error, "earlier");
  EXPECT_THAT(titlesAfter({scratch / "lossy.mp3", second, empty}), ElementsAre("second", "first"));
  EXPECT_EQ(model->error,
            "lossy.mp3 is already lossy. Choose its original WAV, AIFF, FLAC or Apple Lossless file.\n\n"
            "This file contains no playable audio.");
}

TEST_F(Import, AndRoundsChangeNothingWhereTheyMayNotBegin) {
  const std::pair<const char*, std::function<void()>> states[] = {
      {"busy", [&] { model->busy = true; }},
      {"importing", [&] { model->importing = true; }},
      {"listen", [&] { model->stage = Stage::listen; }},
      {"reveal", [&] { model->stage = Stage::reveal; }},
      {"tally", [&] { model->stage = Stage::tally; }},
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
  model->window = nullptr;
  model->choose();
  model->start();
  EXPECT_EQ(sheets.count(), 0U) << "no window";
  model->window = &sheets;
  model->start();
  sheets.alerts.at(0).done(1);
  EXPECT_THAT(changes, IsEmpty()) << "not continued";
}

// A death test, by its name, comes before any thread is started.
TEST(SettingsDeathTest, GoOnInAnotherProcess) {
  const ScratchFolder scratch;
  const auto file = scratch / "defaults.json";
  const auto settings = [&](bool change) {
    NativeModel model(scratch.path(), std::make_unique<FakeAudioEngine>(), Defaults(file));
    if (!change) return (model.glass ? "glass " : "plain ") + *model.appearance;
    model.glass = false;
    model.appearance = "dark";
    std::_Exit(0);
  };
  EXPECT_EXIT(settings(true), testing::ExitedWithCode(0), "");
  EXPECT_EQ(settings(false), "plain dark");
  writeFile(file, R"({"liquidGlass": "false", "appearance": "light"})");
  EXPECT_EQ(settings(false), "glass light") << "a text is no boolean";
  writeFile(file, "{damaged");
  EXPECT_EQ(settings(false), "glass system");
}

TEST(TrackMetadata, IsTheFirstTextThatIsLeftOfTheContainersFieldsThenID3ThenPlainInfo) {
  const TagFields id3{{"id3"}, {"id3"}, {"id3"}};
  const TagFields info{{"info"}, {"info"}, {"info"}};
  const TagFields blank{{" ", "\n"}, {""}, {"\t"}};
  const TagFields invisible{{"  \u2028 "}, {"\u200b\x01"}, {}};
  const struct {
    MediaTags tags;
    TrackMetadata expected;
  } cases[] = {
      {{{{"own"}, {"own"}, {"own"}}, id3, info, {}}, {"own", "own", "own"}},
      {{blank, invisible, info, {}}, {"info", "info", "info"}},
      {{blank, blank, invisible, {}}, {"Name", std::nullopt, std::nullopt}},
      {{{{" ", "second"}, {}, {}}, {{}, {"id3"}, {}}, info, {}}, {"second", "id3", "info"}},
      {{{{"Live\r\nVersion"}, {" \tBand\n"}, {"zero\u200dwidth\ufeff"}}, {}, {}, {}},
       {"Live  Version", "Band", "zero width"}},
      {{{{"\u00a0\u2003wide\u3000"}, {"tagged\U000e0041!"}, {"🎧 Ünï"}}, {}, {}, {}},
       {"wide", "tagged !", "🎧 Ünï"}},
  };
  for (const auto& [tags, expected] : cases) {
    const TrackMetadata metadata = trackMetadata(tags, "/music/Name.flac");
    EXPECT_EQ(metadata.title, expected.title);
    EXPECT_EQ(metadata.artist, expected.artist);
    EXPECT_EQ(metadata.album, expected.album);
  }
}

}  // namespace
}  // namespace zarnet
