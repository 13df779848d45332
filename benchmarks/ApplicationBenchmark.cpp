// The application on a display of its own: how soon its window is painted and what it holds then, how long
// the interface stands still while songs are added, and what a comparison on screen takes of a processor.

#include "app/NativeRoot.h"
#include "app/style/ApplicationStyle.h"
#include "benchmarks/TaggedSongs.h"
#include "tests/support/EventLoop.h"
#include "tests/support/Programs.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/ScriptedSheets.h"
#include "tests/support/Signals.h"
#include "tests/support/SoundServer.h"
#include "tests/support/Wait.h"

#include <QApplication>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>
#include <xcb/xcb.h>

namespace zarnet {

namespace {

using Clock = std::chrono::steady_clock;

/// Processor time of this thread or process, in seconds.
double processorSeconds(clockid_t clock) {
  timespec time;
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

double secondsSince(Clock::time_point begin) {
  return std::chrono::duration<double>(Clock::now() - begin).count();
}

/// A display without a window manager, on which every program started from here shows its windows.
class Display {
 public:
  Display() {
    test::waitUntil([&] { return test::readFile(folder / "number").ends_with('\n'); });
    const std::string number = test::readFile(folder / "number");
    const std::string name = ":" + number.substr(0, number.find('\n'));
    setenv("DISPLAY", name.c_str(), 1);
    setenv("QT_QPA_PLATFORM", "xcb", 1);
    unsetenv("WAYLAND_DISPLAY");
    connection = xcb_connect(name.c_str(), nullptr);
    root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
  }
  ~Display() {
    xcb_disconnect(connection);
    close(output);
  }

  /// Whether a window has painted the middle of the screen, which is black without one.
  bool isPainted() const {
    const auto asked = xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, root, 640, 512, 1, 1, ~0U);
    const std::unique_ptr<xcb_get_image_reply_t, decltype(&std::free)> reply(
        xcb_get_image_reply(connection, asked, nullptr), &std::free);
    if (!reply) return false;
    const std::uint8_t* const pixel = xcb_get_image_data(reply.get());
    return pixel[0] != 0 || pixel[1] != 0 || pixel[2] != 0;
  }

 private:
  test::ScratchFolder folder;
  const int output = open((folder / "number").c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
  test::RunningProgram server{{"Xvfb", "-displayfd", "1", "-screen", "0", "1280x1024x24", "-nolisten", "tcp"},
                              output};
  xcb_connection_t* connection = nullptr;
  xcb_window_t root = 0;
};

const Display& display() {
  static const Display only;
  return only;
}

/// Megabytes of physical memory that a process holds, shared libraries included.
double residentMegabytes(pid_t process) {
  std::ifstream statistics("/proc/" + std::to_string(process) + "/statm");
  double size = 0, resident = 0;
  statistics >> size >> resident;
  return resident * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
}

/// From the start of the program to the first frame of its window on the screen.
void startToFirstFrame(benchmark::State& state) {
  const Display& screen = display();
  for (auto _ : state) {
    const auto begin = Clock::now();
    test::RunningProgram zarnet({ZARNET_PROGRAM});
    if (!test::waitUntil([&] { return screen.isPainted(); }))
      return state.SkipWithError("nothing is painted");
    state.SetIterationTime(secondsSince(begin));
    state.counters["resident_MB"] = residentMegabytes(zarnet.pid());
    zarnet.sendSignal(SIGTERM);
    zarnet.exitStatus(std::chrono::seconds(10));
    test::waitUntil([&] { return !screen.isPainted(); });
  }
}
BENCHMARK(startToFirstFrame)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);

/// The screens on a model of their own, with a real audio server.
struct Shown {
  Shown() {
    model.window = &sheets;
    root.resize(940, 720);
    root.show();
    test::eventually([&] { return root.isVisible(); });
  }

  test::ScratchFolder scratch;
  test::SoundServer server;
  test::ScriptedSheets sheets;
  NativeModel model{test::resource(""), makeAudioEngine(server.address()),
                    Defaults(scratch / "defaults.json")};
  NativeRoot root{model, [](double) {}};
};

void makeApplication() {
  display();
  static int count = 1;
  static char name[] = "zarnet";
  static char* arguments[] = {name, nullptr};
  static QApplication application(count, arguments);
  applyApplicationStyle();
}

/// The longest time that the event loop was away while 100 songs were imported, and until all were painted.
void longestPauseOfAnImport(benchmark::State& state) {
  makeApplication();
  Shown shown;
  const auto files = benchmarks::taggedSongs(shown.scratch.path(), 100);
  for (auto _ : state) {
    double longest = 0, busiest = 0;
    auto last = Clock::now();
    double lastProcessor = processorSeconds(CLOCK_THREAD_CPUTIME_ID);
    QTimer pulse;
    QObject::connect(&pulse, &QTimer::timeout, [&] {
      longest = std::max(longest, secondsSince(last));
      last = Clock::now();
      const double processor = processorSeconds(CLOCK_THREAD_CPUTIME_ID);
      busiest = std::max(busiest, processor - lastProcessor);
      lastProcessor = processor;
    });
    pulse.start(0);
    shown.model.importFiles(files);
    test::eventually([&] { return !shown.model.importing; });
    const auto settled = Clock::now();
    test::eventually([&] { return secondsSince(settled) > 0.5; });
    state.SetIterationTime(longest);
    state.counters["processor_ms"] = 1000 * busiest;
    shown.model.clearSongs();
    test::eventually([&] { return shown.root.isVisible(); });
  }
}
BENCHMARK(longestPauseOfAnImport)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

/// Runs the event loop for five seconds; the processor time that took, in percent of one core.
double percentOfACore() {
  const double before = processorSeconds(CLOCK_PROCESS_CPUTIME_ID);
  const auto begin = Clock::now();
  // Not `eventually`, which would wake up for its condition.
  QEventLoop loop;
  QTimer::singleShot(5000, &loop, &QEventLoop::quit);
  loop.exec();
  return 100 * (processorSeconds(CLOCK_PROCESS_CPUTIME_ID) - before) / secondsSince(begin);
}

/// What a comparison on screen takes, paused and playing.
void comparisonOnScreen(benchmark::State& state) {
  makeApplication();
  Shown shown;
  NativeModel& model = shown.model;
  model.importFiles({writeWave(shown.scratch / "song.wav", test::music(48000, 2, 30))});
  test::eventually([&] { return !model.importing; });
  model.start();
  shown.sheets.alerts.at(0).done(0);
  test::eventually([&] { return *model.stage == Stage::listen && !model.busy; });
  for (auto _ : state) {
    percentOfACore();  // until the screen has settled
    state.counters["paused_percent"] = percentOfACore();
    model.playPause();
    test::eventually([&] { return model.position > 1; });
    state.counters["playing_percent"] = percentOfACore();
    model.playPause();
    state.SetIterationTime(0);
  }
}
BENCHMARK(comparisonOnScreen)->UseManualTime()->Iterations(1);

}  // namespace

}  // namespace zarnet
