// The program as a user meets it: a real window on a real display, a real audio server, driven through the
// accessibility bus and the keyboard.

#include "tests/app/ScreenReader.h"
#include "tests/support/Programs.h"
#include "tests/support/PulseServer.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/Signals.h"
#include "tests/support/Wait.h"

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace zarnet {
namespace {

using namespace test;

/// A program whose first line of output tells when it is ready, and what its address is.
class Announced {
 public:
  Announced(const std::vector<std::string>& commandLine, const std::filesystem::path& output)
      : descriptor(open(output.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600)),
        program(commandLine, descriptor) {
    EXPECT_TRUE(waitUntil([&] { return readFile(output).find('\n') != std::string::npos; }))
        << commandLine[0];
    line = readFile(output);
    line = line.substr(0, line.find('\n'));
  }
  ~Announced() { close(descriptor); }

  std::string line;

 private:
  int descriptor;
  RunningProgram program;
};

/// A desktop of the test's own: display, session bus, audio server, home and temporary folder.
class Desktop {
 public:
  Desktop() {
    // The services that the bus starts inherit this environment and keep their sockets in these folders.
    for (const auto& [variable, folder] :
         {std::pair("HOME", "home"), std::pair("XDG_CONFIG_HOME", "home"),
          std::pair("XDG_RUNTIME_DIR", "runtime"), std::pair("TMPDIR", "temporary")}) {
      std::filesystem::create_directory(scratch / folder);
      std::filesystem::permissions(scratch / folder, std::filesystem::perms::owner_all);
      setenv(variable, (scratch / folder).c_str(), 1);
    }
    setenv("QT_QPA_PLATFORM", "xcb", 1);
    setenv("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1", 1);
    setenv("PULSE_SERVER", sound.address().c_str(), 1);
    unsetenv("WAYLAND_DISPLAY");
    display.emplace(std::vector<std::string>{"Xvfb", "-displayfd", "1", "-screen", "0", "1280x1024x24",
                                             "-nolisten", "tcp"},
                    scratch / "x");
    setenv("DISPLAY", (":" + display->line).c_str(), 1);
    bus.emplace(std::vector<std::string>{"dbus-daemon", "--session", "--nofork", "--print-address=1"},
                scratch / "bus");
    setenv("DBUS_SESSION_BUS_ADDRESS", bus->line.c_str(), 1);
    wakeAccessibilityBus();
    manager.emplace(std::vector<std::string>{"openbox", "--sm-disable"});
  }

  std::filesystem::path temporary() const { return scratch / "temporary"; }
  /// What the program has left in the temporary folder.
  std::vector<std::string> leftovers() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(temporary()))
      names.push_back(entry.path().filename());
    return names;
  }

  ScratchFolder scratch;
  PulseServer sound;

 private:
  std::optional<Announced> display;
  std::optional<Announced> bus;
  std::optional<RunningProgram> manager;  // gives windows the keyboard's focus
};

class Application : public testing::Test {
 protected:
  static void SetUpTestSuite() { desktop = new Desktop; }
  static void TearDownTestSuite() {
    delete desktop;
    desktop = nullptr;
  }

  static void key(const std::string& name) { EXPECT_EQ(runProgram({"xdotool", "key", name}).status, 0); }

  static Desktop* desktop;
};

Desktop* Application::desktop = nullptr;

/// How well what was heard agrees with the source: the best normalised correlation of half a second over a
/// few frames of lag. Frames of pure silence, which the source never has, are gaps of a busy machine and are
/// left out.
double agreement(const std::vector<float>& recorded, const Signal& source) {
  std::vector<float> heard;
  for (std::size_t i = 0; i + 1 < recorded.size(); i += 2) {
    if (recorded[i] != 0 || recorded[i + 1] != 0) heard.push_back(recorded[i]);
  }
  constexpr std::size_t first = 4'800, last = 28'800;
  if (heard.size() < last) return 0;
  double best = 0;
  for (int lag = -64; lag <= 64; ++lag) {
    double product = 0, mine = 0, theirs = 0;
    for (std::size_t i = first; i < last; ++i) {
      const double a = heard[i];
      const double b = source.planes[0][static_cast<std::size_t>(static_cast<int>(i) + lag)];
      product += a * b;
      mine += a * a;
      theirs += b * b;
    }
    best = std::max(best, product / std::sqrt(std::max(mine * theirs, 1e-30)));
  }
  return best;
}

TEST_F(Application, TakesAListenerFromTwoFilesToASavedPicture) {
  const Signal first = music(48000, 2, 20, 1);
  const auto one = writeWave(desktop->scratch / "one.wav", first, SampleType::int16);
  const auto two =
      writeWave(desktop->scratch / "two \xF0\x9F\x8E\xB5.wav", music(44100, 2, 6, 2), SampleType::int16);
  const std::string picture = desktop->scratch / "home/results.png";

  RunningProgram zarnet({ZARNET_PROGRAM, one, two});
  const ScreenReader window(zarnet.pid());
  ASSERT_TRUE(window.sees("2 tracks"));
  window.press("Start blind comparison");
  ASSERT_TRUE(window.sees("Before you listen"));
  window.press("Continue");
  ASSERT_TRUE(window.sees("Track 1 of 2"));
  EXPECT_TRUE(window.isSelected("Listen to A"));

  {
    const MonitorRecorder recording(desktop->sound, "null");
    key("space");
    ASSERT_TRUE(window.sees("Pause", "push button"));
    ASSERT_TRUE(waitUntil([&] { return recording.last() != 0; }));
    ASSERT_TRUE(waitUntil([&] { return agreement(recording.samples(), first) > 0.98; }));
    key("b");
    EXPECT_TRUE(waitUntil([&] { return window.isSelected("Listen to B"); }));
    key("space");
  }
  EXPECT_FALSE(window.seesNow("Lossless original"));

  window.press("Preference: B");
  window.press("Confirm & next track");
  ASSERT_TRUE(window.sees("Track 2 of 2"));
  window.press("Preference: I can’t tell");
  window.press("Confirm & show tally");
  ASSERT_TRUE(window.sees("Your results"));
  EXPECT_TRUE(window.sees("2 tracks · Lossless vs AAC · 256 kbps"));

  window.press("Save results image…");
  window.type(picture);
  window.press("Save");
  EXPECT_TRUE(waitUntil([&] { return std::filesystem::exists(picture); }));
  EXPECT_EQ(readFile(picture).substr(1, 3), "PNG");

  key("ctrl+q");
  EXPECT_EQ(zarnet.exitStatus(std::chrono::seconds(30)), 0);
  EXPECT_EQ(desktop->leftovers(), std::vector<std::string>());
}

TEST_F(Application, EndsInGoodOrderWhenItIsToldToInTheMiddleOfAPreparation) {
  const auto file =
      writeWave(desktop->scratch / "long.wav", noise(48000, 2, 48'000 * 300, 0.3, 1), SampleType::int16);
  RunningProgram zarnet({ZARNET_PROGRAM, file});
  const ScreenReader window(zarnet.pid());
  ASSERT_TRUE(window.sees("1 track"));
  window.press("Start blind comparison");
  window.press("Continue");
  ASSERT_TRUE(window.sees("Creating the comparison…"));
  EXPECT_FALSE(desktop->leftovers().empty());
  zarnet.sendSignal(SIGTERM);
  EXPECT_EQ(zarnet.exitStatus(std::chrono::seconds(30)), 0);
  EXPECT_EQ(desktop->leftovers(), std::vector<std::string>());
}

}  // namespace
}  // namespace zarnet
