#pragma once

#include "app/AppDelegate.h"
#include "app/MainWindow.h"
#include "app/NativeRoot.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/Signals.h"

#include <QAbstractButton>
#include <QAction>
#include <QString>
#include <QStringList>
#include <QWidget>
#include <filesystem>
#include <vector>

#include <gtest/gtest.h>

namespace zarnet::test {

/// The whole application in this process, with its real window, used as a person uses it: by what is shown.
/// Helpers wait for what they name and fail the test when it is missing or disabled.
class InterfaceHarness : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  /// Every text that is visible in the window or in a sheet over it.
  QStringList visibleTexts() const;
  bool sees(const QString& text) const { return visibleTexts().contains(text); }
  /// Waits until a text is visible.
  void expectText(const QString& text) const;

  /// A visible control with this text or accessible name; null with a failure when there is none.
  QWidget* control(const QString& name) const;
  QAbstractButton* button(const QString& name) const;
  void clickButton(const QString& name) const;
  bool isEnabled(const QString& name) const { return button(name) != nullptr && button(name)->isEnabled(); }

  QAction* menuItem(const QString& text) const;
  void triggerAction(const QString& text) const;

  /// Presses a key where the keyboard is.
  void key(Qt::Key key) const;
  /// Goes to a control with Tab alone.
  void reach(const QString& name) const;
  /// The same, and presses Return there.
  void reachAndPress(const QString& name) const;

  /// A short track of music, as a file in the scratch folder.
  std::filesystem::path track(const std::string& name, double seconds = 2) const;
  void import(const std::vector<std::filesystem::path>& files) const;
  /// Starts a test of the imported tracks and waits for its first comparison.
  void startTest() const;

  ScratchFolder scratch;
  std::unique_ptr<AppDelegate> delegate;
  MainWindow* window = nullptr;
  NativeRoot* root = nullptr;
};

}  // namespace zarnet::test
