#pragma once

#include "model/NativeModel.h"
#include "tests/support/EventLoop.h"
#include "tests/support/FakeAudioEngine.h"
#include "tests/support/Programs.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/ScriptedSheets.h"
#include "tests/support/Signals.h"

#include <QTextStream>
#include <algorithm>
#include <cstdlib>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace zarnet::test {

/// Stands in for the external programs: "afconvert" and "lame" that copy their input, so that a preparation
/// takes milliseconds, and that wait or fail when they are told to.
class StubPrograms {
 public:
  explicit StubPrograms(const std::filesystem::path& location) : folder(location) {
    std::filesystem::create_directories(folder);
    for (const char* name : {"afconvert", "lame"}) {
      const std::string here = folder.string();
      writeFile(folder / name, "#!/bin/sh\necho $$ >> " + here + "/started\n[ -e " + here +
                                   "/fail ] && { echo No luck.; exit 3; }\nwhile [ -e " + here +
                                   "/hold ]; do sleep 0.01; done\ncp \"$1\" \"$2\"\n");
      std::filesystem::permissions(folder / name, std::filesystem::perms::owner_all);
    }
  }

  /// While this is on, a program that starts waits; then it goes on.
  void hold(bool on) const { exist("hold", on); }
  /// While this is on, programs end at once with a message and an error.
  void fail(bool on) const { exist("fail", on); }
  /// Whether any program has been started.
  bool started() const { return std::filesystem::exists(folder / "started"); }

  const std::filesystem::path folder;

 private:
  void exist(const char* name, bool on) const {
    if (on) {
      writeFile(folder / name, "");
    } else {
      std::filesystem::remove(folder / name);
    }
  }
};

/// A model whose programs are stubs, whose output is a fake and whose window is answered by the test, in
/// folders of its own.
class Models : public testing::Test {
 protected:
  Models() {
    std::filesystem::create_directory(temporary);
    setenv("TMPDIR", temporary.c_str(), 1);
    makeModel();
  }
  ~Models() override { unsetenv("TMPDIR"); }

  void makeModel() {
    auto fake = std::make_unique<FakeAudioEngine>();
    engine = fake.get();
    model =
        std::make_unique<NativeModel>(programs.folder, std::move(fake), Defaults(scratch / "defaults.json"));
    model->window = &sheets;
  }

  /// A track of half a second.
  Song track(const std::string& title) const {
    const auto file = scratch / (title + ".wav");
    if (!std::filesystem::exists(file)) writeWave(file, noise(48000, 2, 24000, 0.5, 1));
    Song song;
    song.id = file.string();
    song.url = file;
    song.title = QString::fromStdString(title);
    return song;
  }

  /// Starts a test of tracks with these titles, as far as it goes without the event loop.
  void begin(const std::vector<std::string>& titles) {
    std::vector<Song> songs;
    for (const std::string& title : titles)
      songs.push_back(track(title));
    model->playlist = songs;
    model->start();
    sheets.alerts.back().done(0);
  }

  bool prepared() {
    return eventually([this] { return !model->busy; });
  }

  /// What lies in the workspace, or in the temporary folder once the model is gone.
  std::vector<std::string> workspace() const {
    std::vector<std::string> names;
    for (const auto& entry :
         std::filesystem::directory_iterator(model ? model->preparer.directory : temporary))
      names.push_back(entry.path().filename().string());
    return names;
  }

  /// The conversion folders among them.
  std::size_t conversions() const {
    const auto names = workspace();
    return static_cast<std::size_t>(
        std::ranges::count_if(names, [](auto& name) { return name.size() == 36; }));
  }

  /// Everything that the model shows, in one text.
  std::string state() const {
    QString all;
    QTextStream out(&all);
    const NativeModel& m = *model;
    out << m.playlist->size() << int(*m.stage) << *m.codec << *m.rate << *m.match << *m.busy << *m.importing
        << *m.progress << m.error->value_or("-") << *m.index << *m.selected << m.vote->value_or("-")
        << *m.lossless << m.answers->size() << *m.position << '/' << *m.duration << *m.playing << *m.volume
        << *m.loop << *m.loopStart << '/' << *m.loopEnd << *m.originalDescription << *m.glass << *m.appearance
        << m.exportURL.has_value() << m.exportName << m.roundSongs.size() << m.roundCodec << m.roundRate
        << m.roundMatch;
    return all.toStdString();
  }

  /// The names of the properties that change from now on, in order.
  Subscription record(std::vector<std::string>& names) const {
    const NativeModel& m = *model;
    const std::map<const Property*, std::string> known = {{&m.busy, "busy"},
                                                          {&m.progress, "progress"},
                                                          {&m.answers, "answers"},
                                                          {&m.index, "index"},
                                                          {&m.lossless, "lossless"},
                                                          {&m.selected, "selected"},
                                                          {&m.duration, "duration"},
                                                          {&m.stage, "stage"},
                                                          {&m.originalDescription, "originalDescription"},
                                                          {&m.loopStart, "loopStart"},
                                                          {&m.loopEnd, "loopEnd"},
                                                          {&m.loop, "loop"}};
    return model->willChange.subscribe([known, &names](const Property& property) {
      names.push_back(known.contains(&property) ? known.at(&property) : "another");
    });
  }

  ScratchFolder scratch;
  const std::filesystem::path temporary = scratch / "tmp";
  const StubPrograms programs{scratch / "programs"};
  ScriptedSheets sheets;
  FakeAudioEngine* engine = nullptr;  ///< belongs to the model
  std::unique_ptr<NativeModel> model;
};

}  // namespace zarnet::test
