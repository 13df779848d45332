// The program as a user meets it: a real window on a real display, a real audio server, driven through the
// accessibility bus and the keyboard.

#include "system/FileHandle.h"
#include "tests/support/Signals.h"
#include "tests/support/SoundServer.h"
#include "tests/support/Wait.h"

#include <algorithm>
#include <cmath>
#include <list>

#include <atspi/atspi.h>
#include <gtest/gtest.h>

namespace zarnet {
namespace {

using namespace test;

struct Unref {
  void operator()(gpointer object) const { g_object_unref(object); }
};
using Node = std::unique_ptr<AtspiAccessible, Unref>;

bool has(const Node& node, AtspiStateType state) {
  const std::unique_ptr<AtspiStateSet, Unref> states(atspi_accessible_get_state_set(node.get()));
  return states != nullptr && atspi_state_set_contains(states.get(), state) != 0;
}

/// The first that shows under this name (any when it is empty) in all these states, of a node and those below
/// it; nothing when there is none.
Node find(const std::string& wanted, const std::vector<AtspiStateType>& states = {},
          Node node = Node(atspi_get_desktop(0))) {
  char* const name = atspi_accessible_get_name(node.get(), nullptr);
  const bool isNamed = wanted.empty() || (name != nullptr && wanted == name);
  g_free(name);
  if (isNamed && has(node, ATSPI_STATE_SHOWING) &&
      std::ranges::all_of(states, [&](AtspiStateType state) { return has(node, state); }))
    return node;
  Node found;
  const int count = atspi_accessible_get_child_count(node.get(), nullptr);
  for (int i = 0; found == nullptr && i < count; ++i) {
    Node child(atspi_accessible_get_child_at_index(node.get(), i, nullptr));
    if (child != nullptr) found = find(wanted, states, std::move(child));
  }
  return found;
}

/// A desktop of the test's own: display, session bus, audio server, home and temporary folder, with somebody
/// at it who uses windows as a screen reader does. What is named is waited for, and fails the test when it
/// does not come.
class Application : public testing::Test {
 protected:
  Application() {
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
    setenv("DISPLAY", (":" + start({"Xvfb", "-displayfd", "1", "-screen", "0", "1280x1024x24"})).c_str(), 1);
    setenv("DBUS_SESSION_BUS_ADDRESS",
           start({"dbus-daemon", "--session", "--nofork", "--print-address=1"}).c_str(), 1);
    // A window manager gives windows the keyboard's focus.
    helpers.emplace_back(std::vector<std::string>{"openbox", "--sm-disable"});
    atspi_init();
    const Node screen(atspi_get_desktop(0));
    EXPECT_TRUE(waitUntil([&] { return atspi_accessible_get_child_count(screen.get(), nullptr) >= 0; }));
    atspi_accessible_set_cache_mask(screen.get(), ATSPI_CACHE_NONE);
  }

  /// Starts a program whose first line of output tells that it is ready, and what its address is.
  std::string start(const std::vector<std::string>& commandLine) {
    const auto said = scratch / commandLine[0];
    helpers.emplace_back(commandLine, FileHandle::createForWriting(said).descriptor());
    EXPECT_TRUE(waitUntil([&] { return readFile(said).ends_with('\n'); }, limit)) << commandLine[0];
    return readFile(said).substr(0, readFile(said).find('\n'));
  }

  Node await(const std::string& name, const std::vector<AtspiStateType>& states = {}) const {
    Node found;
    if (waitUntil([&] { return (found = find(name, states)) != nullptr; }, limit)) return found;
    throw std::runtime_error("“" + name + "” does not come");
  }
  void press(const std::string& name) const {
    const Node node = await(name, {ATSPI_STATE_ENABLED, ATSPI_STATE_FOCUSABLE});
    AtspiAction* const action = atspi_accessible_get_action_iface(node.get());
    EXPECT_TRUE(atspi_action_do_action(action, 0, nullptr)) << name;
    g_object_unref(action);
  }
  /// Presses a key until it has worked: one that comes while the focus is between two windows goes astray.
  static void key(const std::string& name, const std::function<bool()>& hasWorked) {
    const auto works = [&] { return runProgram({"xdotool", "key", name}).status == 0 && hasWorked(); };
    EXPECT_TRUE(waitUntil(works, limit));
  }

  static bool hasEnded(RunningProgram& zarnet) {
    return zarnet.exitStatus(std::chrono::seconds(1)).has_value();
  }
  /// Asks the window manager to close the window that came first, as its title bar does.
  static void closeMainWindow() {
    EXPECT_EQ(runProgram({"sh", "-c", "wmctrl -ic $(wmctrl -l | head -n 1 | cut -d ' ' -f 1)"}).status, 0);
  }

  /// Whether an encoder is at work in the temporary folder.
  bool encodes() const { return runProgram({"pgrep", "-f", scratch / "temporary"}).status == 0; }

  static constexpr std::chrono::seconds limit{120};
  ScratchFolder scratch;
  SoundServer sound;
  std::list<RunningProgram> helpers;
};

/// How well the sounding frames of a recording agree with a source: the normalised correlation of half a
/// second. A busy server inserts silence between them, which is left out.
double agreement(const std::vector<float>& recorded, const Signal& source) {
  std::size_t frame = 0;
  double product = 0, mine = 0, theirs = 0;
  for (std::size_t i = 0; i < recorded.size() && frame < 24'000; i += 2) {
    if (recorded[i] == 0 && recorded[i + 1] == 0) continue;
    const double original = source.planes[0][frame++];
    product += recorded[i] * original;
    mine += recorded[i] * recorded[i];
    theirs += original * original;
  }
  return frame < 24'000 ? 0 : product / std::sqrt(mine * theirs);
}

TEST_F(Application, TakesAListenerFromTwoFilesToASavedPictureAndEndsInGoodOrder) {
  const Signal first = music(48000, 2, 20, 1);
  const auto one = writeWave(scratch / "one.wav", first, SampleType::int16);
  const auto two = writeWave(scratch / "two 🎵.wav", music(44100, 2, 6, 2), SampleType::int16);
  const std::string picture = scratch / "home/results.png";

  RunningProgram zarnet({ZARNET_PROGRAM, one, two});
  await("2 tracks");
  press("Format");
  press("MP3");
  press("Start blind comparison");
  press("Continue");
  await("Listen to A", {ATSPI_STATE_SELECTED});
  {
    const MonitorRecorder recording(sound, "null");
    press("Play");
    EXPECT_TRUE(waitUntil([&] { return agreement(recording.samples(), first) > 0.98; }, limit));
    key("b", [&] { return find("Listen to B", {ATSPI_STATE_SELECTED}) != nullptr; });
    press("Pause");
  }
  press("Loop");
  press("Loop a section");
  await("Loop on");
  EXPECT_EQ(find("Lossless original"), nullptr);
  press("Preference: B");
  press("Confirm & next track");
  await("Track 2 of 2");
  press("Preference: I can’t tell");
  press("Confirm & show tally");
  await("2 tracks · Lossless vs MP3 · 256 kbps");
  press("Save results image…");
  const Node field = await("", {ATSPI_STATE_EDITABLE});
  EXPECT_TRUE(
      atspi_editable_text_set_text_contents(ATSPI_EDITABLE_TEXT(field.get()), picture.c_str(), nullptr));
  press("Save");
  EXPECT_TRUE(waitUntil([&] { return std::filesystem::exists(picture); }, limit));
  EXPECT_EQ(readFile(picture).substr(1, 3), "PNG");
  key("ctrl+q", [&] { return hasEnded(zarnet); });
  EXPECT_EQ(zarnet.exitStatus(limit), 0);
  EXPECT_TRUE(std::filesystem::is_empty(scratch / "temporary"));
}

TEST_F(Application, EndsInGoodOrderHoweverItIsToldToWhileItEncodes) {
  const auto file = writeWave(scratch / "long.wav", noise(48000, 2, 48'000 * 300, 0.3, 1), SampleType::int16);
  const auto signal = [](int number) {
    return [number](RunningProgram& zarnet) { zarnet.sendSignal(number); };
  };
  const std::pair<const char*, std::function<void(RunningProgram&)>> endings[] = {
      {"SIGTERM", signal(SIGTERM)},
      {"SIGINT", signal(SIGINT)},
      {"SIGHUP", signal(SIGHUP)},
      {"key", [](RunningProgram& zarnet) { key("ctrl+q", [&] { return hasEnded(zarnet); }); }},
      {"title bar", [](RunningProgram&) { closeMainWindow(); }},
  };
  for (const auto& [name, end] : endings) {
    SCOPED_TRACE(name);
    RunningProgram zarnet({ZARNET_PROGRAM, file});
    await("1 track");
    press("Start blind comparison");
    press("Continue");
    EXPECT_TRUE(waitUntil([&] { return encodes(); }, limit));
    end(zarnet);
    EXPECT_EQ(zarnet.exitStatus(limit), 0);
    EXPECT_FALSE(encodes());
    EXPECT_TRUE(std::filesystem::is_empty(scratch / "temporary"));
  }
}

TEST_F(Application, LeavesNothingBehindWhenItsDisplayGoesAway) {
  const auto file = writeWave(scratch / "long.wav", noise(48000, 2, 48'000 * 300, 0.3, 1), SampleType::int16);
  const auto goesWith = [&](const RunningProgram& display, const std::vector<std::string>& environment) {
    std::vector<std::string> words = {"env"};
    words.insert(words.end(), environment.begin(), environment.end());
    words.insert(words.end(), {ZARNET_PROGRAM, file});
    RunningProgram zarnet(words);
    await("1 track");
    press("Start blind comparison");
    press("Continue");
    EXPECT_TRUE(waitUntil([&] { return encodes(); }, limit));
    display.sendSignal(SIGKILL);
    EXPECT_NE(zarnet.exitStatus(limit).value_or(0), 0);
    EXPECT_FALSE(encodes());
    EXPECT_TRUE(std::filesystem::is_empty(scratch / "temporary"));
  };
  {
    const RunningProgram weston({"weston", "--backend=headless-backend.so", "--socket=test", "--no-config"});
    EXPECT_TRUE(waitUntil([&] { return exists(scratch / "runtime/test"); }, limit));
    goesWith(weston, {"QT_QPA_PLATFORM=wayland", "WAYLAND_DISPLAY=test"});
  }
  goesWith(helpers.front(), {});

  for (const char* platform : {"xcb", "wayland", "xcb;wayland"}) {
    const ProgramResult result = runProgram(
        {"env", std::string("QT_QPA_PLATFORM=") + platform, "WAYLAND_DISPLAY=gone", ZARNET_PROGRAM});
    EXPECT_EQ(result.status, 1) << platform;
    EXPECT_TRUE(result.errors.ends_with(
        "Zarnet needs a display to open its window; zarnet-prepare works without one.\n"))
        << result.errors;
  }
}

TEST_F(Application, TakesOverWhatALaterStartIsAskedFor) {
  const auto second = [&](const std::vector<std::string>& files) {
    std::vector<std::string> words = {ZARNET_PROGRAM};
    words.insert(words.end(), files.begin(), files.end());
    return std::make_unique<RunningProgram>(words);
  };
  const auto isInFront = [](const RunningProgram& zarnet) {
    const std::string active = runProgram({"xdotool", "getactivewindow", "getwindowpid"}).output;
    return active == std::to_string(zarnet.pid()) + "\n";
  };
  const auto one = writeWave(scratch / "one.wav", music(48000, 2, 2), SampleType::int16);
  const auto two = writeWave(scratch / "tw\xF6 %41#?.wav", music(48000, 2, 2), SampleType::int16);
  RunningProgram zarnet({ZARNET_PROGRAM});
  await("Import your audio.");

  EXPECT_TRUE(waitUntil([&] { return isInFront(zarnet); }, limit));
  // Its own wish at the start to be in front may still be on its way to the window manager.
  EXPECT_TRUE(waitUntil(
      [&] {
        if (!isInFront(zarnet)) return true;
        runProgram({"xdotool", "getactivewindow", "windowminimize"});
        return false;
      },
      limit));
  EXPECT_EQ(second({})->exitStatus(limit), 0);
  EXPECT_TRUE(waitUntil([&] { return isInFront(zarnet); }, limit)) << "comes to the front";
  EXPECT_EQ(second({one, two})->exitStatus(limit), 0);
  await("2 tracks");

  zarnet.sendSignal(SIGSTOP);
  {
    const auto own = second({});
    await("Import your audio.");
    EXPECT_TRUE(waitUntil([&] { return isInFront(*own); }, limit)) << "the first does not answer";
  }
  zarnet.sendSignal(SIGCONT);

  press("Start blind comparison");
  press("Continue");
  await("Listen to A");
  const auto own = second({one});
  await("1 track");
  await("Listen to A");
  own->sendSignal(SIGTERM);
  EXPECT_EQ(own->exitStatus(limit), 0);
  zarnet.sendSignal(SIGTERM);
  EXPECT_EQ(zarnet.exitStatus(limit), 0);
}

TEST_F(Application, SaysWhyItCannotOpenUntilItIsToldToEnd) {
  const auto button = [](RunningProgram&) { key("Return", [] { return find("OK") == nullptr; }); };
  for (const int number : {SIGTERM, SIGINT, SIGHUP, 0}) {
    RunningProgram zarnet({"env", "TMPDIR=/dev/null", ZARNET_PROGRAM});
    await("Unable to open Zarnet");
    await("OK");
    number != 0 ? zarnet.sendSignal(number) : button(zarnet);
    EXPECT_EQ(zarnet.exitStatus(limit), 1) << number;
  }
}

}  // namespace
}  // namespace zarnet
