#include "desktop/QuitSignals.h"
#include "platform/FileHandle.h"
#include "tests/support/EventLoop.h"
#include "tests/support/Programs.h"
#include "tests/support/ScratchFolder.h"

#include <chrono>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace zarnet {
namespace {

using test::eventually;
using test::readFile;
using test::RunningProgram;
using test::ScratchFolder;

/// The program that has said "ready" and what it says from then on.
struct Waiting {
  explicit Waiting(const std::vector<std::string>& commandLine)
      : output(FileHandle::createForWriting(folder / "said")), program(commandLine, output.descriptor()) {
    EXPECT_TRUE(eventually([&] { return said() == "ready\n"; }));
  }
  std::string said() const { return readFile(folder / "said"); }

  ScratchFolder folder;
  FileHandle output;
  RunningProgram program;
};

TEST(QuitSignals, EndARunningProgramInOrder) {
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
    SCOPED_TRACE(number);
    Waiting waiting({QUITS_ON_SIGNALS});
    waiting.program.sendSignal(number);
    EXPECT_EQ(waiting.program.exitStatus(std::chrono::seconds(60)), 0);
    EXPECT_EQ(waiting.said(), "ready\norderly\n");
  }
}

TEST(QuitSignals, GiveTheSignalsBackWhenTheyGo) {
  int asked = 0;
  struct sigaction before {};
  sigaction(SIGHUP, nullptr, &before);
  {
    const QuitSignals signals([&] { ++asked; });
    raise(SIGHUP);
    EXPECT_EQ(asked, 0) << "the handler itself must do nothing";
    ASSERT_TRUE(eventually([&] { return asked == 1; }));
  }
  struct sigaction after {};
  sigaction(SIGHUP, nullptr, &after);
  EXPECT_EQ(after.sa_handler, before.sa_handler);
}

}  // namespace
}  // namespace zarnet
