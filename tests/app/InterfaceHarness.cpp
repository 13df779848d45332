#include "tests/app/InterfaceHarness.h"

#include "app/controls/ClockText.h"
#include "app/controls/Motion.h"
#include "app/controls/Text.h"
#include "tests/support/EventLoop.h"

#include <QAbstractSlider>
#include <QApplication>
#include <QComboBox>
#include <QMenu>
#include <QMenuBar>
#include <QTest>

namespace zarnet::test {

void InterfaceHarness::SetUp() {
  setMotionAllowed(false);
  delegate = std::make_unique<AppDelegate>(ZARNET_RESOURCES);
  ASSERT_TRUE(delegate->applicationDidFinishLaunching());
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (auto* main = qobject_cast<MainWindow*>(widget)) window = main;
  }
  ASSERT_NE(window, nullptr);
  root = window->findChild<NativeRoot*>();
  ASSERT_TRUE(eventually([&] { return window->isActiveWindow(); }));
}

void InterfaceHarness::TearDown() {
  delegate->applicationWillTerminate();
  delegate.reset();
}

QStringList InterfaceHarness::visibleTexts() const {
  QStringList texts;
  for (const QWidget* widget : QApplication::allWidgets()) {
    if (!widget->isVisible()) continue;
    if (const auto* text = qobject_cast<const Text*>(widget)) texts << text->text();
    if (const auto* clock = qobject_cast<const ClockText*>(widget)) texts << clock->text();
    if (const auto* button = qobject_cast<const QAbstractButton*>(widget)) {
      texts << button->text().replace(QStringLiteral("&&"), QStringLiteral("&")) << button->accessibleName();
    }
    if (const auto* slider = qobject_cast<const QAbstractSlider*>(widget)) texts << slider->accessibleName();
    if (const auto* picker = qobject_cast<const QComboBox*>(widget)) texts << picker->currentText();
  }
  return texts;
}

void InterfaceHarness::expectText(const QString& text) const {
  EXPECT_TRUE(eventually([&] { return sees(text); })) << "“" << text.toStdString() << "” is not among\n"
                                                      << visibleTexts().join(u'\n').toStdString();
}

QWidget* InterfaceHarness::control(const QString& name) const {
  for (QWidget* widget : QApplication::allWidgets()) {
    if (!widget->isVisible() || widget->focusPolicy() == Qt::NoFocus) continue;
    const auto* button = qobject_cast<QAbstractButton*>(widget);
    const QString text =
        button == nullptr ? QString() : button->text().replace(QStringLiteral("&&"), QStringLiteral("&"));
    if (widget->accessibleName() == name || (widget->accessibleName().isEmpty() && text == name))
      return widget;
  }
  ADD_FAILURE() << "no control “" << name.toStdString() << "” among\n"
                << visibleTexts().join(u'\n').toStdString();
  return nullptr;
}

QAbstractButton* InterfaceHarness::button(const QString& name) const {
  return qobject_cast<QAbstractButton*>(control(name));
}

void InterfaceHarness::clickButton(const QString& name) const {
  expectText(name);
  QAbstractButton* found = button(name);
  ASSERT_NE(found, nullptr);
  ASSERT_TRUE(eventually([&] { return found->isEnabled(); })) << name.toStdString();
  QTest::mouseClick(found, Qt::LeftButton);
  runPendingEvents();
}

QAction* InterfaceHarness::menuItem(const QString& text) const {
  for (const QAction* menu : window->menuBar()->actions()) {
    for (QAction* item : menu->menu()->actions()) {
      if (item->text() == text) return item;
    }
  }
  ADD_FAILURE() << "no menu item " << text.toStdString();
  return nullptr;
}

void InterfaceHarness::triggerAction(const QString& text) const {
  QAction* item = menuItem(text);
  ASSERT_TRUE(item != nullptr && item->isEnabled()) << text.toStdString();
  item->trigger();
  runPendingEvents();
}

void InterfaceHarness::key(Qt::Key key) const {
  // A window manager gives the focus back to the window when a sheet has closed; here there is none.
  if (QApplication::activeWindow() == nullptr) {
    window->activateWindow();
    ASSERT_TRUE(eventually([] { return QApplication::activeWindow() != nullptr; }));
  }
  QWidget* focused = QApplication::focusWidget();
  QTest::keyClick(focused != nullptr ? focused : QApplication::activeWindow(), key);
  runPendingEvents();
}

void InterfaceHarness::reach(const QString& name) const {
  expectText(name);
  const QWidget* goal = control(name);
  ASSERT_NE(goal, nullptr);
  ASSERT_TRUE(eventually([&] { return goal->isEnabled(); })) << name.toStdString();
  for (int steps = 0; QApplication::focusWidget() != goal && steps < 60; ++steps)
    key(Qt::Key_Tab);
  ASSERT_EQ(QApplication::focusWidget(), goal) << "Tab does not reach " << name.toStdString();
}

void InterfaceHarness::reachAndPress(const QString& name) const {
  ASSERT_NO_FATAL_FAILURE(reach(name));
  key(Qt::Key_Return);
}

std::filesystem::path InterfaceHarness::track(const std::string& name, double seconds) const {
  return writeWave(scratch / (name + ".wav"), music(48000, 2, seconds), SampleType::int16);
}

void InterfaceHarness::import(const std::vector<std::filesystem::path>& files) const {
  delegate->importFiles(files);
  expectText(files.size() == 1 ? QStringLiteral("1 track") : QStringLiteral("%1 tracks").arg(files.size()));
}

void InterfaceHarness::startTest() const {
  clickButton(QStringLiteral("Start blind comparison"));
  clickButton(QStringLiteral("Continue"));
  expectText(QStringLiteral("Which sounds better to you?"));
}

}  // namespace zarnet::test
