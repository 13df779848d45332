#include "app/AppDelegate.h"
#include "app/NativeRoot.h"
#include "app/style/ApplicationStyle.h"
#include "app/style/Motion.h"
#include "app/widgets/Accessibility.h"
#include "tests/support/EventLoop.h"
#include "tests/support/Signals.h"
#include "tests/support/SoundServer.h"

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QTest>
#include <QWindow>

#include <gtest/gtest.h>

namespace zarnet {
namespace {

using namespace test;

QAccessibleInterface& accessible(QWidget* widget) {
  return *QAccessible::queryAccessibleInterface(widget);
}

/// The whole application in this process, with its real window, used as a person uses it: by what is shown
/// and said to a screen reader. Helpers wait for what they name and fail the test when it does not come.
class Screens : public testing::Test {
 protected:
  void SetUp() override {
    setMotionAllowed(false);
    ASSERT_TRUE(delegate.applicationDidFinishLaunching());
    ASSERT_TRUE(eventually([&] { return (window = QApplication::activeWindow()) != nullptr; }));
    root = window->findChild<NativeRoot*>();
  }
  void TearDown() override { delegate.applicationWillTerminate(); }

  static QStringList visibleTexts() {
    QStringList texts;
    for (QWidget* widget : QApplication::allWidgets()) {
      if (!widget->isVisible()) continue;
      texts << accessible(widget).text(QAccessible::Name) << accessible(widget).text(QAccessible::Value);
    }
    return texts;
  }
  static bool sees(const QString& text) { return visibleTexts().contains(text); }
  static void expect(const QStringList& texts) {
    for (const QString& text : texts)
      EXPECT_TRUE(eventually([&] { return sees(text); })) << text.toStdString() << " is not among\n"
                                                          << visibleTexts().join('\n').toStdString();
  }

  static QWidget* control(const QString& name) {
    expect({name});
    for (QWidget* widget : QApplication::allWidgets()) {
      if (!widget->isVisible() || widget->focusPolicy() == Qt::NoFocus) continue;
      // A combo box says its value instead of its name.
      if (widget->accessibleName() == name || accessible(widget).text(QAccessible::Name) == name)
        return widget;
    }
    throw std::runtime_error("no control " + name.toStdString());
  }
  static bool isSelected(const QString& name) { return accessible(control(name)).state().selected; }
  static void click(const QString& name) {
    QWidget* found = control(name);
    ASSERT_TRUE(eventually([&] { return found->isEnabled() && !found->rect().isEmpty(); }))
        << name.toStdString();
    QTest::mouseClick(found, Qt::LeftButton);
    runPendingEvents();
  }

  /// Presses a key where the keyboard is.
  void key(Qt::Key key) const {
    // A window manager gives the focus back to the window when a sheet has closed; here there is none.
    if (QApplication::activeWindow() == nullptr) window->activateWindow();
    ASSERT_TRUE(eventually([] { return QApplication::activeWindow() != nullptr; }));
    QWidget* focused = QApplication::focusWidget();
    QTest::keyClick(focused != nullptr ? focused : QApplication::activeWindow(), key);
    runPendingEvents();
  }
  /// Goes to a control with Tab alone.
  void reach(const QString& name) const {
    QWidget* goal = control(name);
    ASSERT_TRUE(eventually([&] { return goal->isEnabled(); })) << name.toStdString();
    for (int tabs = 0; tabs < 40 && QApplication::focusWidget() != goal; ++tabs)
      key(Qt::Key_Tab);
    ASSERT_EQ(QApplication::focusWidget(), goal) << "Tab does not reach " << name.toStdString();
  }
  void use(const QStringList& names) const {
    for (const QString& name : names) {
      reach(name);
      key(Qt::Key_Return);
    }
  }

  bool isEnabledInMenu(const QString& text) const {
    for (const QAction* item : window->findChildren<QAction*>()) {
      if (item->text() == text) return item->isEnabled();
    }
    throw std::runtime_error("no menu item " + text.toStdString());
  }

  std::filesystem::path track(const std::string& name, double seconds = 2) const {
    return writeWave(scratch / (name + ".wav"), music(48000, 2, seconds), SampleType::int16);
  }

  ScratchFolder scratch;
  AppDelegate delegate{ZARNET_RESOURCES};
  QWidget* window = nullptr;
  NativeRoot* root = nullptr;
};

TEST_F(Screens, SetupFollowsTheTrackListAndTheSettings) {
  expect({"Import your audio.", "Drop one or more lossless songs here", "Choose audio…",
          "AIFF, WAV, FLAC or Apple Lossless", "Formats hidden until you vote", "256 kbps"});
  EXPECT_FALSE(control("Start blind comparison")->isEnabled());

  delegate.importFiles({scratch / "missing.flac", track("one")});
  expect({"1 track", "16-bit / 48 kHz · PCM", "0:02", "Formats hidden until you vote"});
  EXPECT_TRUE(visibleTexts().join('\n').contains("“missing.flac” could not be opened"));
  click("OK");
  EXPECT_TRUE(eventually([&] { return !sees("OK"); })) << "an error is dismissed once";
  delegate.importFiles({track("two"), track("three")});
  expect({"3 tracks", "Results revealed after your final vote"});
  click("Remove two");
  expect({"2 tracks"});
  EXPECT_FALSE(sees("two"));

  QTest::keyClick(control("Format"), Qt::Key_End);
  EXPECT_EQ(qobject_cast<QComboBox*>(control("Nominal bitrate"))->count(), 10);

  click("Clear all");
  expect({"Import your audio."});
}

TEST_F(Screens, ATestOfOneTrackEndsInItsReveal) {
  delegate.importFiles({track("Only", 30)});
  use({"Start blind comparison", "Continue"});
  expect({"Preparing audio…"});
  key(Qt::Key_Escape);
  EXPECT_TRUE(eventually([&] { return !sees("Cancel"); }));
  EXPECT_TRUE(sees("1 track") && !sees("OK"));
  EXPECT_TRUE(isEnabledInMenu("Import Audio…"));
  EXPECT_FALSE(isEnabledInMenu("Export Converted Audio…"));

  use({"Start blind comparison", "Continue"});
  expect({"Which sounds better to you?", "Blind comparison", "Loudness matched"});
  EXPECT_TRUE(eventually([&] { return isEnabledInMenu("Export Converted Audio…"); }));
  EXPECT_FALSE(isEnabledInMenu("Import Audio…"));
  EXPECT_TRUE(isSelected("Listen to A"));
  EXPECT_FALSE(root->drop({}));
  const auto identities = [] {
    QStringList said;
    for (const char* side : {"Listen to A", "Listen to B"})
      said << accessible(control(side)).text(QAccessible::Description);
    said.sort();
    return said;
  };
  EXPECT_EQ(identities(), QStringList({"", ""})) << "the sides are told apart";

  click("Listen to B");
  EXPECT_TRUE(eventually([&] { return isSelected("Listen to B") && !isSelected("Listen to A"); }));
  EXPECT_FALSE(control("Confirm & reveal")->isEnabled());
  click("Preference: I can’t tell");
  click("Confirm & reveal");
  expect({"Revealed", "You couldn’t tell a difference.", "Save results image…"});
  EXPECT_FALSE(sees("Which sounds better to you?"));
  EXPECT_EQ(identities(), QStringList({"Compressed from the original, AAC · 256 kbps",
                                       "Lossless original, 16-bit / 48 kHz · PCM"}));
  click("Back");
  expect({"1 track"});
}

TEST_F(Screens, AKeyboardIsEnoughForATestOfTwoTracks) {
  const SoundServer sound;
  setenv("PULSE_SERVER", sound.address().c_str(), 1);
  delegate.importFiles({track("First"), track("Second", 20)});
  use({"Start blind comparison", "Continue"});
  expect({"Track 1 of 2"});
  key(Qt::Key_B);
  EXPECT_TRUE(eventually([&] { return isSelected("Listen to B"); }));
  use({"Preference: B"});
  key(Qt::Key_A);  // also on an answer button
  EXPECT_TRUE(eventually([&] { return isSelected("Listen to A"); }));
  EXPECT_TRUE(isSelected("Preference: B"));
  use({"Confirm & next track"});

  expect({"Track 2 of 2"});
  EXPECT_FALSE(control("Confirm & show tally")->isEnabled());
  reach("Volume");
  key(Qt::Key_Space);  // also on a slider
  expect({"Pause"});
  key(Qt::Key_Space);
  expect({"Play"});
  reach("Playback position");
  key(Qt::Key_Right);
  expect({"0:05"});
  use({"Forward five seconds"});
  expect({"0:10"});
  use({"Loop", "Set start"});
  expect({"0:10 – 0:20"});
  key(Qt::Key_Escape);
  use({"Back five seconds"});
  expect({"0:05"});
  use({"Preference: A", "Confirm & show tally"});

  expect({"Your results", "2 tracks · Lossless vs AAC · 256 kbps", "First", "Second"});
  use({"New comparison"});
  expect({"2 tracks"});
  unsetenv("PULSE_SERVER");
}

TEST_F(Screens, OpenTheOtherWindowsFromTheMenu) {
  const auto choose = [&](const QString& text) {
    for (QAction* item : window->findChildren<QAction*>()) {
      if (item->text() == text) return item->trigger();
    }
    FAIL() << "no menu item " << text.toStdString();
  };
  choose("Donate…");  // there is no browser here
  EXPECT_TRUE(eventually([] { return sees("OK"); }));
  EXPECT_TRUE(visibleTexts().join('\n').contains("Could not open the donation page. Visit http"));
  click("OK");
  QApplication::setApplicationVersion("9.8");
  choose("About Zarnet");
  expect({"Version 9.8"});
  choose("Acknowledgements…");
  expect({"Blind audio preference comparisons.", "Here AAC is encoded by FFmpeg’s libavcodec."});

  choose("Settings…");
  const auto lightness = [&](QWidget* of) {
    return of->grab().toImage().pixelColor(of->width() / 2, of->height() - 5).lightness();
  };
  QWidget* glass = control("Liquid Glass");
  for (const bool dark : {true, false, true}) {
    click(dark ? "Dark" : "Light");
    for (QWidget* each : {window, glass->window()})
      EXPECT_TRUE(eventually([&] { return dark ? lightness(each) < 60 : lightness(each) > 200; }));
  }
  click("System");
}

class ScreensUnder : public Screens, public testing::WithParamInterface<const char*> {};

TEST_P(ScreensUnder, ASheetEndByTheQuitKeyAndWithTheSession) {
  const std::map<std::string, std::function<void()>> sheets = {
      {"Nothing", [] {}},
      {"APanel", [&] { delegate.importAudio(); }},
      {"AQuestion", [&] { use({"Start blind comparison"}); }},
      {"Progress",
       [&] {
         use({"Start blind comparison", "Continue"});
       }},
      {"AnError", [&] { delegate.importFiles({"missing.flac"}); }},
      {"AnotherWindow", [&] { delegate.showSettings(); }},
  };
  const auto endsBy = [](const std::function<void()>& action) {
    QTimer limit;
    QObject::connect(&limit, &QTimer::timeout, qApp, [] { QApplication::exit(1); });
    limit.start(std::chrono::seconds(60));
    QMetaObject::invokeMethod(qApp, action, Qt::QueuedConnection);
    return QApplication::exec() == 0;
  };
  delegate.importFiles({track("Long", 20)});
  expect({"1 track"});
  sheets.at(GetParam())();
  ASSERT_TRUE(eventually([&] {
    return QApplication::focusWidget() != nullptr &&
           (QApplication::activeWindow() != window || std::string("Nothing") == GetParam());
  }));
  EXPECT_TRUE(endsBy([] { QTest::keyClick(QApplication::focusWidget(), Qt::Key_Q, Qt::ControlModifier); }));
  EXPECT_TRUE(endsBy([] {
    QEvent quit(QEvent::Quit);  // what becomes of the session manager's request
    QApplication::sendEvent(qApp, &quit);
  }));
}

INSTANTIATE_TEST_SUITE_P(, ScreensUnder,
                         testing::Values("Nothing", "APanel", "AQuestion", "Progress", "AnError",
                                         "AnotherWindow"),
                         [](const auto& sheet) { return std::string(sheet.param); });

TEST_F(Screens, FitTheWindowToTheLatestOfManyHeights) {
  delegate.fitContent(400);
  ASSERT_TRUE(eventually([&] { return root->height() == 400; }));
  int resizes = 0;
  const QObject scope;
  QObject::connect(window->windowHandle(), &QWindow::heightChanged, &scope, [&] { ++resizes; });
  for (const double ignored : {0.0, -5.0, std::nan(""), HUGE_VAL})
    delegate.fitContent(ignored);
  for (int height = 451; height <= 460; ++height)
    delegate.fitContent(height - 0.5);
  ASSERT_TRUE(eventually([&] { return root->height() == 460; }));
  EXPECT_EQ(resizes, 1);
}

}  // namespace
}  // namespace zarnet

// An application object of the "offscreen" platform (unless the display is a test's own), apart from the
// user's settings and desktop.
int main(int argc, char** argv) {
  const zarnet::test::ScratchFolder home;
  setenv("XDG_CONFIG_HOME", home.path().c_str(), 1);
  setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent", 1);
  setenv("PULSE_SERVER", "unix:/nonexistent", 1);
  setenv("QT_QPA_PLATFORM", "offscreen", 0);
  testing::InitGoogleTest(&argc, argv);
  const QApplication application(argc, argv);
  zarnet::installAccessibility();
  zarnet::applyApplicationStyle();
  return RUN_ALL_TESTS();
}
