// The entry of test programs that need an application object: one of the "offscreen" platform, apart from the
// user's settings and desktop.

#include "tests/support/ScratchFolder.h"

#include <QGuiApplication>
#include <cstdlib>

#include <gtest/gtest.h>

int main(int argc, char** argv) {
  const zarnet::test::ScratchFolder home;
  for (const char* folder : {"XDG_CONFIG_HOME", "XDG_RUNTIME_DIR"})
    setenv(folder, home.path().c_str(), 1);
  setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent", 1);
  setenv("QT_QPA_PLATFORM", "offscreen", 0);
  testing::InitGoogleTest(&argc, argv);
  const QGuiApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
