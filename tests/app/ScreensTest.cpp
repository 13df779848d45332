#include "app/controls/SideCard.h"
#include "tests/app/InterfaceHarness.h"
#include "tests/support/EventLoop.h"
#include "tests/support/PulseServer.h"

#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QTest>
#include <cmath>
#include <cstdlib>

namespace zarnet {
namespace {

using test::eventually;

class Screens : public test::InterfaceHarness {
 protected:
  bool isSelected(const QString& name) const {
    const auto* found = qobject_cast<const SelectableButton*>(control(name));
    return found != nullptr && found->isSelected();
  }
};

TEST_F(Screens, SetupFollowsTheTrackListAndTheSettings) {
  for (const char* text :
       {"Import your audio.", "Drop one or more lossless songs here", "Choose audio…",
        "AIFF, WAV, FLAC or Apple Lossless", "Formats hidden until you vote", "256 kbps"}) {
    expectText(QString::fromUtf8(text));
  }
  EXPECT_FALSE(isEnabled("Start blind comparison"));

  import({track("one")});
  expectText("16-bit / 48 kHz · PCM");
  expectText("0:02");
  EXPECT_TRUE(sees("Formats hidden until you vote"));
  EXPECT_FALSE(sees("Import your audio."));
  delegate->importFiles({track("two"), track("three")});
  expectText("3 tracks");
  EXPECT_TRUE(sees("Results revealed after your final vote"));
  EXPECT_TRUE(isEnabled("Start blind comparison"));
  clickButton("Remove two");
  expectText("2 tracks");
  EXPECT_FALSE(sees("two"));

  auto* format = qobject_cast<QComboBox*>(control("Format"));
  QTest::keyClick(format, Qt::Key_End);
  expectText("Nominal bitrate");
  EXPECT_EQ(qobject_cast<QComboBox*>(control("Nominal bitrate"))->count(), 10);
  QTest::keyClick(format, Qt::Key_Up);
  expectText("Bitrate");
  EXPECT_EQ(qobject_cast<QComboBox*>(control("Bitrate"))->count(), 17);
  EXPECT_TRUE(sees("256 kbps"));

  clickButton("Clear all");
  expectText("Import your audio.");
}

TEST_F(Screens, ShowRefusedFilesInAnAlertThatIsDismissedOnce) {
  delegate->importFiles({scratch / "missing.flac", track("good")});
  expectText("Zarnet");
  expectText("1 track");
  EXPECT_TRUE(visibleTexts().join(u'\n').contains("“missing.flac” could not be opened"));
  clickButton("OK");
  EXPECT_TRUE(eventually([&] { return !sees("Zarnet"); }));
}

TEST_F(Screens, ATestOfOneTrackEndsInItsReveal) {
  import({track("Only")});
  EXPECT_TRUE(menuItem("Import Audio…")->isEnabled());
  EXPECT_FALSE(menuItem("Export Converted Audio…")->isEnabled());
  startTest();
  EXPECT_TRUE(eventually([&] { return menuItem("Export Converted Audio…")->isEnabled(); }));
  EXPECT_FALSE(menuItem("Import Audio…")->isEnabled());
  EXPECT_TRUE(sees("Blind comparison"));
  EXPECT_TRUE(sees("Loudness matched"));
  EXPECT_FALSE(sees("Track 1 of 1"));
  EXPECT_TRUE(isSelected("Listen to A"));
  for (const char* side : {"Listen to A", "Listen to B"}) {
    EXPECT_EQ(control(side)->accessibleDescription(), "") << "the sides are told apart";
  }
  EXPECT_FALSE(root->drop({}));

  clickButton("Listen to B");
  EXPECT_TRUE(eventually([&] { return isSelected("Listen to B") && !isSelected("Listen to A"); }));
  EXPECT_FALSE(isEnabled("Confirm & reveal"));
  clickButton("Preference: I can’t tell");
  EXPECT_TRUE(isSelected("Preference: I can’t tell"));
  clickButton("Confirm & reveal");

  expectText("Revealed");
  EXPECT_TRUE(sees("You couldn’t tell a difference."));
  EXPECT_FALSE(sees("Which sounds better to you?"));
  QStringList identities;
  for (const char* side : {"Listen to A", "Listen to B"})
    identities << control(side)->accessibleDescription();
  identities.sort();
  EXPECT_EQ(identities, QStringList({"Compressed from the original, AAC · 256 kbps",
                                     "Lossless original, 16-bit / 48 kHz · PCM"}));
  EXPECT_FALSE(menuItem("Export Converted Audio…")->isEnabled());
  clickButton("New comparison");
  expectText("1 track");
}

TEST_F(Screens, AKeyboardIsEnoughForATestOfTwoTracks) {
  const test::PulseServer sound;
  setenv("PULSE_SERVER", sound.address().c_str(), 1);
  import({track("First", 30), track("Second", 20)});
  reach("Clear all");
  key(Qt::Key_Tab);
  EXPECT_EQ(QApplication::focusWidget(), control("Remove First")) << "Tab leaves the order of the eye";
  reachAndPress("Start blind comparison");
  expectText("Continue");
  key(Qt::Key_Return);  // the default button
  expectText("Track 1 of 2");
  reach("Playback position");
  key(Qt::Key_End);
  key(Qt::Key_B);
  EXPECT_TRUE(eventually([&] { return isSelected("Listen to B"); }));
  reachAndPress("Preference: B");
  key(Qt::Key_A);  // also on an answer button
  EXPECT_TRUE(eventually([&] { return isSelected("Listen to A"); }));
  EXPECT_TRUE(isSelected("Preference: B"));
  reachAndPress("Confirm & next track");

  expectText("Track 2 of 2");
  expectText("0:00");  // though the first, longer one stood at its end
  EXPECT_FALSE(isEnabled("Confirm & show tally"));
  reach("Volume");
  key(Qt::Key_Space);  // also on a slider
  expectText("Pause");
  key(Qt::Key_Space);
  expectText("Play");
  reach("Playback position");
  key(Qt::Key_Right);
  expectText("0:05");
  auto* spoken = QAccessible::queryAccessibleInterface(control("Playback position"))->valueInterface();
  EXPECT_NEAR(spoken->currentValue().toDouble(), 5, 1) << "not seconds";
  reachAndPress("Forward five seconds");
  expectText("0:10");
  reachAndPress("Loop");
  reachAndPress("Set start");
  key(Qt::Key_Escape);
  reachAndPress("Preference: A");
  reachAndPress("Confirm & show tally");

  expectText("Your results");
  EXPECT_TRUE(sees("2 tracks · Lossless vs AAC · 256 kbps"));
  EXPECT_TRUE(sees("First") && sees("Second"));
  reachAndPress("New comparison");
  expectText("2 tracks");
  unsetenv("PULSE_SERVER");
}

TEST_F(Screens, EscapeCancelsAPreparation) {
  import({track("Long", 60)});
  clickButton("Start blind comparison");
  clickButton("Continue");
  expectText("Preparing audio…");
  key(Qt::Key_Escape);
  EXPECT_TRUE(eventually([&] { return !sees("Cancel"); }));
  EXPECT_TRUE(sees("1 track"));
  EXPECT_FALSE(sees("OK"));
}

TEST_F(Screens, FitTheWindowToTheLatestOfManyHeights) {
  ASSERT_TRUE(eventually([&] { return root->height() > 0; }));
  test::runPendingEvents();
  int resizes = 0;
  struct Counter : QObject {
    int& count;
    explicit Counter(int& target) : count(target) {}
    bool eventFilter(QObject*, QEvent* event) override {
      count += event->type() == QEvent::Resize;
      return false;
    }
  } counter(resizes);
  ASSERT_TRUE(eventually([&] {
    const int before = root->height();
    QTest::qWait(150);  // the first fit of the start-up may still be on its way
    return root->height() == before;
  }));
  window->installEventFilter(&counter);
  for (const double ignored : {0.0, -5.0, std::nan(""), HUGE_VAL})
    delegate->fitContent(ignored);
  for (int height = 451; height <= 460; ++height)
    delegate->fitContent(height - 0.5);
  ASSERT_TRUE(eventually([&] { return root->height() == 460; }));
  EXPECT_EQ(resizes, 1);
}

}  // namespace
}  // namespace zarnet
