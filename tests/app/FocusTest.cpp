// Where the keyboard is, and whether it is seen there, when what had the focus goes away.

#include "app/NativeRoot.h"
#include "app/screens/NativeSettings.h"
#include "tests/support/EventLoop.h"
#include "tests/support/FakeAudioEngine.h"
#include "tests/support/ScratchFolder.h"

#include <QAccessible>
#include <QApplication>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>

#include <gtest/gtest.h>

namespace zarnet {
namespace {

using namespace test;

/// The content of the window in a low one, around a model that the test changes by hand.
class Focus : public testing::Test {
 protected:
  Focus() {
    root.resize(940, 500);
    root.show();
    root.activateWindow();
    EXPECT_TRUE(eventually([&] { return QApplication::activeWindow() == &root; }));
  }

  void list(int tracks) {
    std::vector<Song> songs(static_cast<std::size_t>(tracks));
    for (int i = 0; i < tracks; ++i)
      songs[i].id = songs[i].title.setNum(i).toStdString();
    model.playlist = songs;
    settle();
  }
  void compare(int tracks) {
    list(tracks);
    model.roundSongs = model.songs();
    model.stage = Stage::listen;
    settle();
  }
  /// Until long lists have arrived and all is laid out.
  static void settle() {
    for (int turn = 0; turn < 12; ++turn)
      runPendingEvents();
  }

  QWidget* control(const QString& name) {
    for (auto* widget : root.findChildren<QWidget*>()) {
      auto* said = QAccessible::queryAccessibleInterface(widget);
      const bool named = widget->accessibleName() == name || said->text(QAccessible::Name) == name;
      if (named && widget->isVisible() && widget->focusPolicy() != Qt::NoFocus) return widget;
    }
    throw std::runtime_error("no control " + name.toStdString());
  }
  QWidget* focus(const QString& name) {
    QWidget* goal = control(name);
    goal->setFocus(Qt::TabFocusReason);
    root.findChild<QScrollArea*>()->ensureWidgetVisible(goal);
    return goal;
  }
  QString focused() {
    QWidget* widget = root.focusWidget();
    if (widget == nullptr) return {};
    EXPECT_TRUE(widget->isEnabled() && widget->isVisible());
    EXPECT_EQ(widget->visibleRegion(), QRegion(widget->rect())) << "has the focus unseen";
    return QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name);
  }
  int scrolled() { return root.findChild<QScrollArea*>()->verticalScrollBar()->value(); }

  ScratchFolder scratch;
  NativeModel model{ZARNET_RESOURCES, std::make_unique<FakeAudioEngine>(),
                    Defaults(scratch / "defaults.json")};
  NativeRoot root{model, [](double) {}};
};

TEST_F(Focus, StaysWhereALongListStandsDuringAPreparation) {
  list(41);
  focus("Start blind comparison");
  const int before = scrolled();
  ASSERT_GT(before, 1000);
  model.busy = true;
  settle();
  EXPECT_EQ(scrolled(), before);
  model.busy = false;
  settle();
  EXPECT_EQ(focused(), "Start blind comparison");
  EXPECT_EQ(scrolled(), before);
}

TEST_F(Focus, GoesOnFromTheFirstImportToTheStart) {
  focus("Choose audio…");
  model.importing = true;
  settle();
  EXPECT_EQ(focused(), "");
  list(41);
  model.importing = false;
  settle();
  EXPECT_EQ(focused(), "Start blind comparison");
  focus("Add songs…");
  const int before = scrolled();
  model.importing = true;
  settle();
  model.importing = false;
  settle();
  EXPECT_EQ(focused(), "Add songs…");
  EXPECT_EQ(scrolled(), before);
}

TEST_F(Focus, GoesToTheNeighbourOfARowThatIsRemoved) {
  list(3);
  for (const auto& [removed, next] :
       {std::pair("Remove 1", "Remove 2"), {"Remove 2", "Remove 0"}, {"Remove 0", "Choose audio…"}}) {
    QTest::keyClick(focus(removed), Qt::Key_Return);
    settle();
    EXPECT_EQ(focused(), next);
  }
}

TEST_F(Focus, BringsTheVerdictIntoView) {
  compare(1);
  EXPECT_EQ(focused(), "Play");
  model.vote = "A";
  settle();
  focus("Confirm & reveal");
  model.answers = {{QUuid(), "0", "A", "A"}};
  model.stage = Stage::reveal;
  settle();
  EXPECT_EQ(focused(), "Save results image…");
}

TEST_F(Focus, GoesBackToTheQuestionWhenTheNextTrackIsCancelled) {
  compare(2);
  model.vote = "same";
  settle();
  focus("Confirm & next track");
  model.vote = std::nullopt;
  model.busy = true;
  settle();
  model.busy = false;
  settle();
  EXPECT_EQ(focused(), "Preference: A");
}

TEST_F(Focus, ChangesNoSettingOutOfSight) {
  list(41);
  auto* format = focus("Format");
  QTest::keyClick(format, Qt::Key_PageUp);
  const int up = scrolled();
  QTest::keyClick(format, Qt::Key_PageUp);
  EXPECT_LT(scrolled(), up);
  QTest::keyClick(format, Qt::Key_Down);
  EXPECT_EQ(model.codec, "AAC");
  EXPECT_EQ(format->visibleRegion(), QRegion(format->rect()));
  QTest::keyClick(format, Qt::Key_Down);
  EXPECT_EQ(model.codec, "MP3");
}

TEST_F(Focus, IsNotNeededToToggleByAssistiveTechnology) {
  NativeSettings settings(model);
  settings.show();
  compare(1);
  QTest::keyClick(focus("Loop"), Qt::Key_Return);
  settle();
  const auto toggle = [](const QString& name) {
    for (QWidget* widget : QApplication::allWidgets()) {
      auto* said = QAccessible::queryAccessibleInterface(widget);
      if (said == nullptr || said->text(QAccessible::Name) != name) continue;
      auto* actions = said->actionInterface();
      const QString& action = QAccessibleActionInterface::toggleAction();
      if (actions != nullptr && actions->actionNames().contains(action)) return actions->doAction(action);
    }
    FAIL() << name.toStdString();
  };
  toggle("Loop a section");
  EXPECT_TRUE(model.loop);
  toggle("Liquid Glass");
  EXPECT_FALSE(model.glass);
  model.back();
  settle();
  toggle("Match loudness");
  EXPECT_FALSE(model.match);
}

}  // namespace
}  // namespace zarnet
