// model-host RESOURCES TASK…: a program around a model, in the folders that XDG_CONFIG_HOME and TMPDIR name.
//
//   settings         says what the settings are
//   set              switches translucency off and the appearance to dark
//   prepare FILE     starts a test of a file and goes on until a signal asks it to quit, then says "ended"

#include "desktop/QuitSignals.h"
#include "model/NativeModel.h"
#include "tests/support/QtSuppressions.h"

#include <QGuiApplication>
#include <cstdio>
#include <string>

namespace {

using namespace zarnet;

/// Presses the first button of every alert, and nothing else.
class Consent : public Sheets {
 public:
  void show(const OpenPanel&, std::function<void(std::vector<std::filesystem::path>)>) override {}
  void show(const SavePanel&, std::function<void(std::optional<std::filesystem::path>)>) override {}
  void show(const Alert&, std::function<void(std::optional<std::size_t>)> done) override { done(0); }
};

}  // namespace

int main(int argc, char** argv) {
  const QGuiApplication application(argc, argv);
  const QuitSignals signals([] { QCoreApplication::quit(); });
  const std::string task = argv[2];
  NativeModel model(argv[1]);
  if (task == "settings") {
    std::printf("%s %s\n", model.glass ? "glass" : "plain", model.appearance->toUtf8().constData());
    return 0;
  }
  if (task == "set") {
    model.glass = false;
    model.appearance = QStringLiteral("dark");
    return 0;
  }
  Consent consent;
  model.window = &consent;
  Song song;
  song.url = argv[3];
  model.playlist = {song};
  model.start();
  const int status = QCoreApplication::exec();
  model.cleanup();
  std::puts("ended");
  return status;
}
