#include "desktop/Appearance.h"
#include "desktop/Palette.h"
#include "system/FileHandle.h"
#include "tests/support/EventLoop.h"
#include "tests/support/Programs.h"
#include "tests/support/ScratchFolder.h"

#include <QDBusMessage>

#include <gtest/gtest.h>

namespace zarnet {
namespace {

using namespace test;

bool isDark() {
  return tokens(QGuiApplication::palette()).dark;
}

/// A session bus of its own, on which nothing is started by name, with or without a portal.
class Appearances : public testing::Test {
 protected:
  void SetUp() override {
    writeFile(folder / "bus.conf",
              "<busconfig><type>session</type><listen>" + address.toStdString() +
                  "</listen><policy context=\"default\"><allow send_destination=\"*\"/>"
                  "<allow receive_sender=\"*\"/><allow own=\"*\"/></policy></busconfig>");
    daemon.emplace(std::vector<std::string>{"dbus-daemon", "--nofork",
                                            "--config-file=" + (folder / "bus.conf").string()});
    ASSERT_TRUE(eventually([&] {
      QDBusConnection::disconnectFromBus("appearance");
      return QDBusConnection::connectToBus(address, "appearance").isConnected();
    }));
    QGuiApplication::setPalette(lightPalette());
    appearance = std::make_unique<Appearance>(*qGuiApp, QDBusConnection("appearance"));
  }

  void startPortal(int scheme) {
    portal.reset();
    const FileHandle output = FileHandle::createForWriting(folder / "said");
    portal.emplace(std::vector<std::string>{FAKE_PORTAL, address.toStdString(), std::to_string(scheme)},
                   output.descriptor());
    ASSERT_TRUE(eventually([&] { return readFile(folder / "said") == "ready\n"; }));
  }

  const ScratchFolder folder;
  const QString address = QString::fromStdString("unix:path=" + (folder / "bus").string());
  std::optional<RunningProgram> daemon;
  std::optional<RunningProgram> portal;
  std::unique_ptr<Appearance> appearance;
};

TEST_F(Appearances, FollowThePortalAtOnceAsItChangesAndWhenItComesBack) {
  startPortal(1);
  appearance->choose(std::nullopt);
  EXPECT_EQ(QGuiApplication::palette(), darkPalette())
      << "the first window must not come up in the wrong colours";
  for (const uint scheme : {2, 1, 0, 1}) {
    auto change =
        QDBusMessage::createMethodCall("org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
                                       "org.freedesktop.portal.Settings", "Set");
    QDBusConnection("appearance").send(change << scheme);
    ASSERT_TRUE(eventually([&] { return isDark() == (scheme == 1); })) << scheme;
  }
  portal.reset();
  runPendingEvents();
  EXPECT_TRUE(isDark()) << "its word is kept when it goes";
  startPortal(2);
  ASSERT_TRUE(eventually([&] { return !isDark(); }));
  appearance->choose(ColorScheme::dark);
  EXPECT_TRUE(isDark()) << "the user's choice counts whatever the desktop wants";
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
