#include "tests/model/ModelFixture.h"
#include "tests/support/SwitchesHeard.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace zarnet {
namespace {

using namespace test;

/// A whole listening test with real files, real encoders and a real audio server whose silent output is
/// recorded.
class WholeTest : public Models {
 protected:
  WholeTest() { makeModel(makeAudioEngine(server.address())); }

  double position() const { return std::get<double>(model->player.status().at("position")); }
  void playOn() {
    ASSERT_TRUE(eventually([this, end = position() + 0.2] { return position() > end; }));
  }

  /// The comparison that is on screen, as its preparation left it in the workspace.
  PreparedAudio onScreen() const {
    std::filesystem::path stem = *model->exportURL;
    stem.replace_extension();
    const auto record =
        QJsonDocument::fromJson(QByteArray::fromStdString(readFile(stem.string() + "-check.json")));
    PreparedAudio audio{};
    audio.original = std::make_shared<const PCM>(stem.parent_path() / "original.wav");
    audio.lossy = std::make_shared<const PCM>(stem.string() + ".caf");
    audio.offset = record["offsetSamples"].toInteger();
    audio.gains = {static_cast<float>(record["gainOriginal"].toDouble()),
                   static_cast<float>(record["gainLossy"].toDouble())};
    return audio;
  }

  SoundServer server;
};

TEST_F(WholeTest, RunsFromTheImportToTheSavedResults) {
  writeWave(scratch / "source.wav", music(44100, 2, 6, 1), SampleType::int16);
  writeWave(scratch / "third.wav", music(48000, 2, 6, 3), SampleType::int24);
  runScript(scratch.path(), R"(
    ffmpeg -f lavfi -i color=red:s=600x300 -frames:v 1 cover.jpg
    ffmpeg -i source.wav -i cover.jpg -map 0 -map 1 -disposition:v attached_pic \
      -metadata title=Song/Live -metadata artist=Band first.flac
    ffmpeg -i source.wav -ac 1 -c:a alac second.m4a lossy.mp3)");

  model->choose();
  sheets.openPanels.at(0).done(
      {scratch / "first.flac", scratch / "lossy.mp3", scratch / "second.m4a", scratch / "third.wav"});
  ASSERT_TRUE(eventually([&] { return !model->importing; }));
  ASSERT_EQ(model->songs().size(), 3U);
  EXPECT_EQ(model->songs()[0].title, "Band - Song/Live");
  EXPECT_EQ(model->songs()[0].artwork->size(), QSize(256, 128));
  EXPECT_EQ(model->error,
            "lossy.mp3 is already lossy. Choose its original WAV, AIFF, FLAC or Apple Lossless file.");
  model->error = std::nullopt;

  model->codec = "MP3";
  model->rate = 128;
  model->start();
  sheets.alerts.at(0).done(0);
  for (const char* choice : {"A", "same", "B"}) {
    SCOPED_TRACE(choice);
    ASSERT_TRUE(prepared());
    ASSERT_EQ(model->stage, Stage::listen) << model->error->value_or("").toStdString();
    const ReferencePlayer start{onScreen(), *model->lossless == "A", 0, true};
    const MonitorRecorder recorder(server, "null");
    model->playPause();
    for (const char* side : {"B", "A", "B"}) {
      playOn();
      model->select(side);
    }
    playOn();
    ASSERT_TRUE(eventually([&] { return *model->playing; }));
    model->playPause();
    EXPECT_EQ(switchesHeard(recorder, std::llround(position() * 48000), start), 3);

    if (sheets.savePanels.empty()) {
      model->exportAudio();
      EXPECT_EQ(sheets.savePanels.at(0).panel.name, "Band - Song-Live - MP3 128 kbps.mp3");
      sheets.savePanels.at(0).done(scratch / "exported.mp3");
      EXPECT_EQ(readFile(scratch / "exported.mp3"), readFile(*model->exportURL));
    }
    vote(choice);
  }
  EXPECT_EQ(model->stage, Stage::tally);
  EXPECT_THAT(answers(), testing::ElementsAre("Band - Song/LiveA", "secondsame", "thirdB"));
  model->saveResults();
  sheets.savePanels.at(1).done(scratch / "results.png");
  EXPECT_EQ(readFile(scratch / "results.png"), model->resultsPNG().toStdString());
  EXPECT_EQ(model->error, std::nullopt);
  EXPECT_THAT(workspace(), testing::IsEmpty());
}

}  // namespace
}  // namespace zarnet
