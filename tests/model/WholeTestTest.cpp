// A whole listening test from the import to the saved results: real files, real encoders, a real audio server
// whose silent output is recorded.

#include "model/NativeModel.h"
#include "tests/playback/ReferencePlayer.h"
#include "tests/support/EventLoop.h"
#include "tests/support/Programs.h"
#include "tests/support/PulseServer.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/ScriptedSheets.h"
#include "tests/support/Signals.h"

#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <cmath>
#include <cstdlib>
#include <deque>

#include <gmock/gmock.h>

namespace zarnet {
namespace {

using namespace test;
using testing::ElementsAre;
using testing::IsEmpty;

/// The comparison that is on screen, as its preparation left it in the workspace.
PreparedAudio onScreen(const NativeModel& model) {
  std::filesystem::path stem = *model.exportURL;
  stem.replace_extension();
  const QJsonObject record =
      QJsonDocument::fromJson(QByteArray::fromStdString(readFile(stem.string() + "-check.json"))).object();
  PreparedAudio audio{};
  audio.original = std::make_shared<const PCM>(stem.parent_path() / "original.wav");
  audio.lossy = std::make_shared<const PCM>(stem.string() + ".caf");
  audio.offset = record["offsetSamples"].toInteger();
  audio.gains = {static_cast<float>(record["gainOriginal"].toDouble()),
                 static_cast<float>(record["gainLossy"].toDouble())};
  return audio;
}

/// Follows a recording frame by frame from the start of a comparison, and returns how many switches it holds;
/// −1 at the first frame that is not the right mix within 1e-6. Frames of silence are passed over: before,
/// after, and where the server found nothing in time.
int switchesHeard(const std::vector<float>& samples, std::size_t from, ReferencePlayer expected) {
  // A switch may begin with a few frames that are too much alike to tell, so that only its whole length does.
  constexpr std::size_t longestDoubt = 64;
  constexpr std::size_t switchFrames = 256;
  std::deque<std::pair<ReferencePlayer, std::size_t>> before;
  const auto isRight = [&](ReferencePlayer& player, std::size_t i) {
    const std::array<float, 2> frame = player.frame();
    return std::abs(samples[i] - frame[0]) <= 1e-6 && std::abs(samples[i + 1] - frame[1]) <= 1e-6;
  };
  const auto isSilent = [&](std::size_t i) { return samples[i] == 0 && samples[i + 1] == 0; };
  int switches = 0;
  for (std::size_t i = from; i < samples.size(); i += 2) {
    if (isSilent(i)) continue;
    before.emplace_back(expected, i);
    if (before.size() > longestDoubt) before.pop_front();
    if (isRight(expected, i)) continue;
    const std::size_t end = std::min(samples.size(), i + 2 * switchFrames);
    const auto origin = std::find_if(before.rbegin(), before.rend(), [&](const auto& moment) {
      ReferencePlayer switched = moment.first;
      switched.selectedA = !switched.selectedA;
      for (std::size_t k = moment.second; k < end; k += 2) {
        if (!isSilent(k) && !isRight(switched, k)) return false;
      }
      expected = switched;
      return true;
    });
    if (origin == before.rend()) {
      ADD_FAILURE() << "frame " << expected.position - 1 << " after " << switches << " switches";
      return -1;
    }
    before.clear();
    i = end - 2;
    ++switches;
  }
  return switches;
}

TEST(WholeTest, RunsFromTheImportToTheSavedResults) {
  PulseServer server;
  const MonitorRecorder recorder(server, "null");
  ScratchFolder scratch;
  const auto temporary = scratch / "tmp";
  std::filesystem::create_directory(temporary);
  setenv("TMPDIR", temporary.c_str(), 1);

  const std::string wave = writeWave(scratch / "source.wav", music(44100, 2, 6, 1), SampleType::int16);
  const std::string third = writeWave(scratch / "third.wav", music(48000, 2, 6, 3), SampleType::int24);
  ffmpeg({"-f", "lavfi", "-i", "color=red:s=600x300", "-frames:v", "1", scratch / "cover.jpg"});
  ffmpeg({"-i", wave, "-i", scratch / "cover.jpg", "-map", "0", "-map", "1", "-disposition:v", "attached_pic",
          "-metadata", "title=Song/Live", "-metadata", "artist=Band", "-metadata", "album=Record",
          scratch / "first.flac"});
  ffmpeg({"-i", wave, "-ac", "1", "-c:a", "alac", scratch / "second.m4a"});
  ffmpeg({"-i", wave, scratch / "lossy.mp3"});

  ScriptedSheets sheets;
  NativeModel model(resource(""), makeAudioEngine(server.address()), Defaults(scratch / "defaults.json"));
  model.window = &sheets;
  model.choose();
  sheets.openPanels.at(0).done(
      {scratch / "first.flac", scratch / "lossy.mp3", scratch / "second.m4a", third});
  ASSERT_TRUE(eventually([&] { return !model.importing; }));
  ASSERT_EQ(model.songs().size(), 3U);
  EXPECT_EQ(model.songs()[0].title, "Band - Song/Live");
  EXPECT_EQ(model.songs()[0].album, "Record");
  EXPECT_EQ(model.songs()[0].artwork->size(), QSize(256, 128));
  EXPECT_EQ(model.songs()[1].title, "second");
  EXPECT_EQ(model.songs()[1].detail, "16-bit / 44.1 kHz · Apple Lossless");
  EXPECT_EQ(model.error,
            "lossy.mp3 is already lossy. Choose its original WAV, AIFF, FLAC or Apple Lossless file.");
  model.error = std::nullopt;

  model.codec = "MP3";
  model.rate = 128;
  model.start();
  sheets.alerts.at(0).done(0);
  const QString choices[] = {"A", "same", "B"};
  for (std::size_t track = 0; track < 3; ++track) {
    SCOPED_TRACE(track);
    ASSERT_TRUE(eventually([&] { return !model.busy; }));
    ASSERT_EQ(model.stage, Stage::listen) << model.error->value_or("").toStdString();
    ASSERT_EQ(model.index, static_cast<std::int64_t>(track));
    EXPECT_EQ(model.answers->size(), track);
    ReferencePlayer expected{onScreen(model), *model.lossless == "A"};
    expected.running = true;

    const std::size_t from = recorder.samples().size();
    model.playPause();
    const char* const sides[] = {"B", "A", "B"};
    for (const char* side : sides) {
      const double next = model.position + 0.2;
      ASSERT_TRUE(eventually([&] { return model.position > next; }));
      model.select(side);
    }
    const double end = model.position + 0.2;
    ASSERT_TRUE(eventually([&] { return model.position > end; }));
    model.playPause();
    const std::size_t recorded = recorder.count() + 9600;
    ASSERT_TRUE(eventually([&] { return recorder.count() > recorded && !model.playing; }));
    EXPECT_EQ(switchesHeard(recorder.samples(), from, expected), 3);

    if (track == 0) {
      model.exportAudio();
      EXPECT_EQ(sheets.savePanels.at(0).panel.name, "Band - Song-Live - MP3 128 kbps.mp3");
      sheets.savePanels.at(0).done(scratch / "exported.mp3");
      EXPECT_EQ(readFile(scratch / "exported.mp3"), readFile(*model.exportURL));
    }
    model.vote = choices[track];
    model.confirm();
  }
  EXPECT_EQ(model.stage, Stage::tally);
  ASSERT_EQ(model.answers->size(), 3U);
  for (std::size_t track = 0; track < 3; ++track) {
    const Vote& answer = model.answers->at(track);
    EXPECT_EQ(answer.title, model.songs()[track].title);
    EXPECT_EQ(answer.choice, choices[track]);
  }
  model.saveResults();
  sheets.savePanels.at(1).done(scratch / "results.png");
  EXPECT_EQ(QImage::fromData(QByteArray::fromStdString(readFile(scratch / "results.png"))).width(), 1000);
  EXPECT_EQ(model.error, std::nullopt);
  EXPECT_THAT(std::vector(std::filesystem::directory_iterator(model.preparer.directory), {}), IsEmpty());
  model.back();
  EXPECT_EQ(model.stage, Stage::setup);
  EXPECT_EQ(model.songs().size(), 3U);
  unsetenv("TMPDIR");
}

}  // namespace
}  // namespace zarnet
