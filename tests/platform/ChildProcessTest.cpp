#include "platform/ChildProcess.h"
#include "platform/FileHandle.h"
#include "tests/support/Programs.h"
#include "tests/support/ScratchFolder.h"

#include <csignal>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

namespace zarnet {

namespace {

struct Ending {
  int status;
  std::string output;
};

/// Runs a script to its end. The number of the child stays reserved until it is reaped.
Ending runToEnd(const std::string& script) {
  const test::ScratchFolder scratch;
  const FileHandle output = FileHandle::createForWriting(scratch / "output");
  ChildProcess child("/bin/sh", {"-c", script}, output.descriptor());
  child.waitUntilExited();
  child.waitUntilExited();
  EXPECT_EQ(test::livingChildren(), 1);
  child.terminate();
  const int status = child.reap();
  EXPECT_EQ(child.reap(), status);
  EXPECT_EQ(test::livingChildren(), 0);
  return {status, test::readFile(scratch / "output")};
}

}  // namespace

TEST(ChildProcess, StartsWithCleanSignalsInAGroupOfItsOwnAndNoOtherOpenFiles) {
  // As a library would leave it: without close-on-exec.
  const int open = fcntl(STDIN_FILENO, F_DUPFD, 700);
  sigset_t terminating;
  sigemptyset(&terminating);
  sigaddset(&terminating, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &terminating, nullptr);
  std::signal(SIGPIPE, SIG_IGN);
  const std::string told = runToEnd("exec cat /proc/self/status").output;
  const std::string files = runToEnd("exec ls /proc/self/fd").output;
  std::signal(SIGPIPE, SIG_DFL);
  pthread_sigmask(SIG_UNBLOCK, &terminating, nullptr);
  close(open);
  EXPECT_THAT(told, testing::HasSubstr("\nSigBlk:\t0000000000000000\n"));
  // 32 and 33 belong to the C library, which ignores them in every child.
  EXPECT_THAT(told, testing::ContainsRegex("\nSigIgn:\t0000000[01][08]0000000\n"));
  EXPECT_EQ(files, "0\n1\n2\n3\n") << "3 is the listing itself";
  EXPECT_EQ(
      runToEnd("read -r pid name state parent group rest </proc/self/stat; echo $((pid - group))").output,
      "0\n");
}

TEST(ChildProcess, TellsHowAChildEnded) {
  EXPECT_EQ(runToEnd("exit 0").status, 0);
  EXPECT_EQ(runToEnd("exit 255").status, 255);
  EXPECT_EQ(runToEnd("kill -KILL $$").status, 128 + SIGKILL);
  std::signal(SIGCHLD, SIG_IGN);  // the system would throw exit statuses away
  EXPECT_EQ(runToEnd("exit 3").status, 3);
  std::signal(SIGCHLD, SIG_DFL);
}

TEST(ChildProcess, TerminatesWhatTheChildStarted) {
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
  ChildProcess child("/bin/sh", {"-c", "sleep 1000 & echo; wait"}, ends[1]);
  close(ends[1]);
  char started = 0;
  ASSERT_EQ(read(ends[0], &started, 1), 1);
  child.terminate();
  child.reap();
  pollfd closing = {ends[0], POLLIN, 0};
  ASSERT_EQ(poll(&closing, 1, 30'000), 1) << "the grandchild still holds its output open";
  EXPECT_EQ(read(ends[0], &started, 1), 0);
  close(ends[0]);
}

}  // namespace zarnet
