#include "desktop/Appearance.h"
#include "desktop/Palette.h"
#include "platform/FileHandle.h"
#include "tests/support/EventLoop.h"
#include "tests/support/Programs.h"
#include "tests/support/ScratchFolder.h"

#include <QDBusMessage>
#include <memory>
#include <optional>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>

namespace zarnet {
namespace {

using test::eventually;
using test::readFile;
using test::RunningProgram;
using test::ScratchFolder;
using test::writeFile;

bool isDark() {
  return tokens(QGuiApplication::palette()).dark;
}

/// A session bus of its own, on which nothing is started by name, with or without a portal.
class Appearances : public testing::Test {
 protected:
  void SetUp() override {
    const std::string place = "unix:path=" + (folder / "bus").string();
    writeFile(folder / "bus.conf",
              "<busconfig><type>session</type><listen>" + place +
                  "</listen><policy context=\"default\"><allow send_destination=\"*\"/>"
                  "<allow receive_sender=\"*\"/><allow own=\"*\"/></policy></busconfig>");
    address = QString::fromStdString(place);
    daemon.emplace(std::vector<std::string>{"dbus-daemon", "--nofork",
                                            "--config-file=" + (folder / "bus.conf").string()});
    ASSERT_TRUE(eventually([&] {
      bus = QDBusConnection::connectToBus(address, "appearance");
      if (!bus.isConnected()) QDBusConnection::disconnectFromBus("appearance");
      return bus.isConnected();
    }));
    QGuiApplication::setPalette(lightPalette());
    appearance = new Appearance(*qGuiApp, bus);
  }

  void TearDown() override {
    delete appearance;
    QDBusConnection::disconnectFromBus("appearance");
  }

  void startPortal(int scheme) {
    portal.reset();
    const FileHandle output = FileHandle::createForWriting(folder / "said");
    portal.emplace(std::vector<std::string>{FAKE_PORTAL, address.toStdString(), std::to_string(scheme)},
                   output.descriptor());
    ASSERT_TRUE(eventually([&] { return readFile(folder / "said") == "ready\n"; }));
  }

  void changeScheme(uint scheme) {
    QDBusMessage change =
        QDBusMessage::createMethodCall("org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
                                       "org.freedesktop.portal.Settings", "Set");
    bus.send(change << scheme);
  }

  ScratchFolder folder;
  QString address;
  std::optional<RunningProgram> daemon;
  std::optional<RunningProgram> portal;
  QDBusConnection bus{QString()};
  Appearance* appearance = nullptr;
};

TEST_F(Appearances, FollowThePortalAtOnceAndAsItChanges) {
  startPortal(1);
  appearance->choose(std::nullopt);
  EXPECT_TRUE(isDark()) << "the first window must not come up in the wrong colours";
  EXPECT_EQ(QGuiApplication::palette(), darkPalette());
  changeScheme(2);
  ASSERT_TRUE(eventually([&] { return !isDark(); }));
  changeScheme(1);
  ASSERT_TRUE(eventually([&] { return isDark(); }));
  changeScheme(0);
  ASSERT_TRUE(eventually([&] { return !isDark(); })) << "no preference falls back to the platform's palette";
  appearance->choose(ColorScheme::dark);
  EXPECT_TRUE(isDark()) << "the user's choice counts whatever the desktop wants";
}

TEST_F(Appearances, HearAPortalThatComesLaterAndKeepItsWordWhenItGoes) {
  appearance->choose(std::nullopt);
  EXPECT_FALSE(isDark());
  startPortal(1);
  ASSERT_TRUE(eventually([&] { return isDark(); }));
  portal.reset();
  test::runPendingEvents();
  EXPECT_TRUE(isDark());
  startPortal(2);
  ASSERT_TRUE(eventually([&] { return !isDark(); }));
}

TEST_F(Appearances, DoNotWaitForAFrozenPortalButHearItWhenItThaws) {
  startPortal(1);
  portal->sendSignal(SIGSTOP);
  appearance->choose(std::nullopt);
  EXPECT_FALSE(isDark());
  portal->sendSignal(SIGCONT);
  ASSERT_TRUE(eventually([&] { return isDark(); }));
}

}  // namespace
}  // namespace zarnet
