// The entry of the tests of the window: an application object of the "offscreen" platform (unless the display
// is a test's own), apart from the user's settings and desktop.

#include "app/ApplicationStyle.h"
#include "app/controls/Accessibility.h"
#include "tests/support/ScratchFolder.h"

#include <QApplication>
#include <cstdlib>

#include <gtest/gtest.h>

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
