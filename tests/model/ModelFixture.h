#pragma once

#include "model/NativeModel.h"
#include "system/FileSystem.h"
#include "tests/support/EventLoop.h"
#include "tests/support/FakeAudioEngine.h"
#include "tests/support/ScriptedSheets.h"
#include "tests/support/Signals.h"
#include "tests/support/StandIns.h"

#include <gmock/gmock.h>

namespace zarnet::test {

/// A model in folders of its own, whose encoders can be replaced and whose window is answered by the test.
class Models : public testing::Test {
 protected:
  Models() {
    std::filesystem::create_directory(temporary);
    setenv("TMPDIR", temporary.c_str(), 1);
    makeModel();
  }
  ~Models() override { unsetenv("TMPDIR"); }

  void makeModel(std::unique_ptr<AudioEngine> output = std::make_unique<FakeAudioEngine>()) {
    engine = dynamic_cast<FakeAudioEngine*>(output.get());
    model = std::make_unique<NativeModel>(programs.lame().parent_path(), std::move(output),
                                          Defaults(scratch / "defaults.json"));
    model->window = &sheets;
  }

  /// A track of half a second.
  Song track(const std::string& title) const {
    Song song;
    song.url = writeWave(scratch / (title + ".wav"), noise(48000, 2, 24000, 0.5, 1));
    song.title = QString::fromStdString(title);
    return song;
  }

  /// Starts a test of tracks with these titles, as far as it goes without the event loop.
  void begin(const std::vector<std::string>& titles) {
    model->playlist = {};
    for (const std::string& title : titles)
      model->playlist.change([&](std::vector<Song>& songs) { songs.push_back(track(title)); });
    model->start();
    if (!sheets.alerts.empty()) sheets.alerts.back().done(0);
  }
  void vote(const QString& choice) {
    model->vote = choice;
    model->confirm();
  }
  bool prepared() {
    return eventually([this] { return !model->busy; });
  }
  /// The title of each answered track with what was chosen.
  std::vector<QString> answers() const {
    std::vector<QString> all;
    for (const Vote& answer : *model->answers)
      all.push_back(answer.title + answer.choice);
    return all;
  }

  /// Seconds of the comparison that the player holds.
  double loaded() const { return std::get<double>(model->player.status().at("duration")); }
  bool plays() const { return std::get<bool>(model->player.status().at("playing")); }
  std::vector<std::filesystem::path> workspace() const { return folderEntries(model->preparer.directory); }
  /// How many of them are conversions.
  std::ptrdiff_t conversions() const {
    return std::ranges::count_if(workspace(), [](const auto& entry) { return is_directory(entry); });
  }

  /// Notes which properties change from now on, in order.
  void watch() {
    changes.clear();
    watcher = model->willChange.subscribe([this](const Property& property) { changes.push_back(&property); });
  }

  ScratchFolder scratch;
  const std::filesystem::path temporary = scratch / "tmp";
  StandIns programs;
  ScriptedSheets sheets;
  FakeAudioEngine* engine = nullptr;  ///< the model's
  std::vector<const Property*> changes;
  std::unique_ptr<NativeModel> model;
  Subscription watcher;
};

}  // namespace zarnet::test
