// Where the keyboard is, and whether it is seen there, when what had the focus goes away.

#include "app/NativeRoot.h"
#include "app/screens/ListenScreen.h"
#include "app/screens/NativeSettings.h"
#include "app/sheets/Popover.h"
#include "app/widgets/SegmentedPicker.h"
#include "tests/support/EventLoop.h"
#include "tests/support/FakeAudioEngine.h"
#include "tests/support/ScratchFolder.h"

#include <QAccessible>
#include <QApplication>
#include <QDragEnterEvent>
#include <QMimeData>
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

/// The first of this name, and with this action unless it is empty, below a node of the tree that assistive
/// technology sees.
QAccessibleInterface* find(QAccessibleInterface* node, const QString& name, const QString& action = {}) {
  if (node == nullptr) return nullptr;
  auto* actions = node->actionInterface();
  if (node->text(QAccessible::Name) == name &&
      (action.isEmpty() || (actions != nullptr && actions->actionNames().contains(action))))
    return node;
  for (int i = 0; i < node->childCount(); ++i) {
    if (auto* found = find(node->child(i), name, action)) return found;
  }
  return nullptr;
}

using AssistiveTechnology = Focus;

TEST_F(AssistiveTechnology, TogglesAndChoosesByItself) {
  using Actions = QAccessibleActionInterface;
  NativeSettings settings(model);
  settings.setWindowFlag(Qt::Window);
  settings.show();
  const auto use = [](QWidget& window, const QString& name, const QString& action) {
    const auto found = [&] { return find(QAccessible::queryAccessibleInterface(&window), name, action); };
    ASSERT_TRUE(eventually([&] { return found() != nullptr; }, std::chrono::seconds(5)))
        << name.toStdString();
    found()->actionInterface()->doAction(action);
    settle();
  };
  list(1);
  use(root, "Match loudness", Actions::toggleAction());
  EXPECT_FALSE(model.match);
  use(root, "Ogg Vorbis", Actions::toggleAction());
  EXPECT_EQ(model.codec, "Ogg Vorbis");
  use(root, "96 kbps", Actions::toggleAction());
  EXPECT_EQ(model.rate, 96);
  use(settings, "Liquid Glass", Actions::toggleAction());
  EXPECT_FALSE(model.glass);

  compare(1);
  use(root, "Loop", Actions::pressAction());
  use(root, "Loop a section", Actions::toggleAction());
  EXPECT_TRUE(model.loop);
  EXPECT_EQ(focused(), "Loop a section");
  use(root, "Set end", Actions::pressAction());
  EXPECT_TRUE(eventually([&] { return *model.loopEnd > 0; }));
}

TEST_F(AssistiveTechnology, SeesWhatPartsAreAndHearsWhichSideIsHeard) {
  compare(1);
  QTest::keyClick(focus("Loop"), Qt::Key_Return);
  settle();
  NativeSettings settings(model);
  QWidget window;
  const std::tuple<QWidget*, const char*, QAccessible::Role> parts[] = {
      {root.findChild<ListenScreen*>(), "the screen", QAccessible::Pane},
      {root.findChild<Popover*>(), "the popover", QAccessible::Dialog},
      {settings.findChild<SegmentedPicker*>(), "the theme", QAccessible::Grouping},
      {&window, "a window", QAccessible::Dialog}};
  for (const auto& [widget, name, role] : parts)
    EXPECT_EQ(QAccessible::queryAccessibleInterface(widget)->role(), role) << name;
  model.select("B");
  settle();
  EXPECT_EQ(root.findChild<ListenScreen*>()->accessibleDescription(), "Listening to B");
}

TEST_F(Focus, BelongsToTheLoopPopoverUntilItCloses) {
  compare(1);
  focus("Loop");
  const auto press = [&](Qt::Key key) {
    QTest::keyClick(root.focusWidget(), key);
    settle();
  };
  press(Qt::Key_Return);
  EXPECT_EQ(focused(), "Loop a section");
  press(Qt::Key_Space);  // not playback
  EXPECT_TRUE(model.loop);
  press(Qt::Key_B);
  EXPECT_EQ(model.selected, "A");
  for (const char* next : {"Set start", "Set end", "Loop a section"}) {
    press(Qt::Key_Tab);
    EXPECT_EQ(focused(), next);
  }
  press(Qt::Key_Escape);
  EXPECT_EQ(focused(), "Loop on");
  press(Qt::Key_Return);
  QTest::mouseClick(control("Preference: B"), Qt::LeftButton);
  settle();
  EXPECT_FALSE(root.findChild<Popover*>()->isVisible());
  EXPECT_EQ(model.vote, std::nullopt) << "the click only closes it";
}

using Drops = Focus;

TEST_F(Drops, AreCopiedDuringSetupAndElseRefused) {
  QMimeData files;
  files.setUrls({QUrl(QStringLiteral("file:///nonexistent/one.wav"))});
  const auto dropped = [&](Qt::DropActions offered) {
    QDragEnterEvent enter(QPoint(9, 9), offered, &files, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&root, &enter);
    if (!enter.isAccepted()) return false;
    QDropEvent drop(QPointF(9, 9), offered, &files, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&root, &drop);
    EXPECT_EQ(drop.dropAction(), Qt::CopyAction) << "or the file would be taken away";
    return drop.isAccepted();
  };
  EXPECT_FALSE(dropped(Qt::MoveAction));
  EXPECT_TRUE(dropped(Qt::MoveAction | Qt::CopyAction));
  EXPECT_TRUE(eventually([&] { return model.error->has_value(); })) << "there is no such file";
  EXPECT_FALSE(model.importing);
  model.busy = true;
  EXPECT_FALSE(dropped(Qt::CopyAction));
  model.busy = false;
  model.stage = Stage::listen;
  EXPECT_FALSE(dropped(Qt::CopyAction));
}

}  // namespace
}  // namespace zarnet
