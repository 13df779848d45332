#include "tests/model/ModelFixture.h"

namespace zarnet {
namespace {

using namespace test;
using testing::ElementsAre;

class Import : public Models {
 protected:
  std::filesystem::path wave(const std::string& name) const {
    return writeWave(scratch / name, sine(44100, 1, 4410, 440, 0.5), SampleType::int16);
  }
  bool imported() {
    return eventually([this] { return !model->importing; });
  }
  std::vector<std::string> titles() const {
    std::vector<std::string> all;
    for (const Song& song : model->songs())
      all.push_back(song.title.toStdString());
    return all;
  }
};

TEST_F(Import, AddsEachAcceptedFileOnceInOrderAndTellsAboutTheOthers) {
  const auto first = wave("first.wav");
  const auto second = wave("second.wav");
  const auto empty = writeWave(scratch / "empty.wav", sine(48000, 2, 0, 440, 0.5));
  ffmpeg({"-i", first, scratch / "lossy.mp3"});
  std::filesystem::create_directory(scratch / "x");
  model->error = "earlier";
  model->importFiles({second, first, scratch / "." / "x" / ".." / "second.wav"});
  EXPECT_TRUE(model->importing);
  EXPECT_FALSE(model->canStart());
  model->importFiles({empty});  // not while one is running
  ASSERT_TRUE(imported());
  EXPECT_THAT(titles(), ElementsAre("second", "first"));
  EXPECT_EQ(model->error, "earlier");

  model->importFiles({scratch / "lossy.mp3", second, empty});
  ASSERT_TRUE(imported());
  EXPECT_THAT(titles(), ElementsAre("second", "first"));
  EXPECT_EQ(model->error,
            "lossy.mp3 is already lossy. Choose its original WAV, AIFF, FLAC or Apple Lossless file.\n\n"
            "This file contains no playable audio.");
}

TEST_F(Import, AndRoundsChangeNothingWhereTheyMayNotBegin) {
  const auto file = wave("new.wav");
  const auto edit = [&] {
    model->importFiles({file});
    model->choose();
    model->remove(track("X"));
    model->clearSongs();
  };
  const auto start = [&] { model->start(); };
  const struct {
    const char* name;
    std::function<void()> raise;
    std::function<void()> attempt;
  } table[] = {{"edit, busy", [&] { model->busy = true; }, edit},
               {"edit, importing", [&] { model->importing = true; }, edit},
               {"edit, listen", [&] { model->stage = Stage::listen; }, edit},
               {"edit, reveal", [&] { model->stage = Stage::reveal; }, edit},
               {"edit, tally", [&] { model->stage = Stage::tally; }, edit},
               {"choose, no window", [&] { model->window = nullptr; }, [&] { model->choose(); }},
               {"start, busy", [&] { model->busy = true; }, start},
               {"start, importing", [&] { model->importing = true; }, start},
               {"start, no track", [&] { model->playlist = {}; }, start},
               {"start, no window", [&] { model->window = nullptr; }, start},
               {"export, busy", [&] { model->busy = true; }, [&] { model->exportAudio(); }},
               {"save, no window", [&] { model->window = nullptr; }, [&] { model->saveResults(); }}};
  for (const auto& [name, raise, attempt] : table) {
    makeModel();
    model->playlist = {track("X")};
    raise();
    const std::string before = state();
    attempt();
    EXPECT_EQ(state(), before) << name;
    EXPECT_EQ(sheets.count(), 0U) << name;
  }
  makeModel();
  model->playlist = {track("X")};
  const std::string before = state();
  model->start();
  sheets.alerts.at(0).done(1);
  sheets.alerts.at(0).done(std::nullopt);
  EXPECT_EQ(state(), before) << "start, not continued";
}

}  // namespace
}  // namespace zarnet
