#include "system/ChildProcess.h"
#include "system/FileHandle.h"
#include "tests/support/Programs.h"

#include <chrono>
#include <csignal>
#include <optional>
#include <thread>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>

namespace zarnet {

namespace {

/// Runs a script to its end; its status and output. The child's number stays reserved until it is reaped.
std::pair<int, std::string> runToEnd(const std::string& script) {
  const test::ScratchFolder scratch;
  const FileHandle output = FileHandle::createForWriting(scratch / "output");
  ChildProcess child("/bin/sh", {"-c", script}, output.descriptor());
  child.waitUntilExited();
  EXPECT_EQ(test::livingChildren(), 1);
  child.terminate();
  const int status = child.reap();
  EXPECT_EQ(test::livingChildren(), 0);
  return {status, test::readFile(scratch / "output")};
}

}  // namespace

TEST(ChildProcess, StartsWithCleanSignalsAndNoOtherOpenFiles) {
  // As a library would leave it: without close-on-exec.
  const int open = fcntl(STDIN_FILENO, F_DUPFD, 700);
  sigset_t terminating;
  sigemptyset(&terminating);
  sigaddset(&terminating, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &terminating, nullptr);
  std::signal(SIGPIPE, SIG_IGN);
  const std::string told = runToEnd("exec cat /proc/self/status").second;
  const std::string files = runToEnd("exec ls /proc/self/fd").second;
  std::signal(SIGPIPE, SIG_DFL);
  pthread_sigmask(SIG_UNBLOCK, &terminating, nullptr);
  close(open);
  EXPECT_THAT(told, testing::HasSubstr("\nSigBlk:\t0000000000000000\n"));
  // 32 and 33 belong to the C library, which ignores them in every child.
  EXPECT_THAT(told, testing::ContainsRegex("\nSigIgn:\t0000000[01][08]0000000\n"));
  EXPECT_EQ(files, "0\n1\n2\n3\n") << "3 is the listing itself";
}

TEST(ChildProcess, TellsHowAChildEnded) {
  EXPECT_EQ(runToEnd("exit 255").first, 255);
  EXPECT_EQ(runToEnd("kill -KILL $$").first, 128 + SIGKILL);
  std::signal(SIGCHLD, SIG_IGN);  // the system would throw exit statuses away
  EXPECT_EQ(runToEnd("exit 3").first, 3);
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

TEST(ChildProcess, EndsWithTheThreadThatStartedIt) {
  const test::ScratchFolder scratch;
  const FileHandle output = FileHandle::createForWriting(scratch / "output");
  std::optional<ChildProcess> child;
  std::thread([&] {
    child.emplace("/bin/sleep", std::vector<std::string>{"1000"}, output.descriptor());
  }).join();
  EXPECT_EQ(child->reap(), 128 + SIGKILL);
}

TEST(ChildProcess, KillsAChildThatDoesNotEndWhenAsked) {
  for (const char* const script : {"trap '' TERM; echo; while :; do sleep 1; done",
                                   "trap 'kill -STOP $$' TERM; echo; while :; do sleep 1; done"}) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe2(ends.data(), O_CLOEXEC), 0);
    ChildProcess child("/bin/sh", {"-c", script}, ends[1]);
    char ready = 0;
    ASSERT_EQ(read(ends[0], &ready, 1), 1);
    child.terminate();
    const auto asked = std::chrono::steady_clock::now();
    child.waitUntilExited();
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - asked;
    EXPECT_GT(taken.count(), 1.9);
    EXPECT_EQ(child.reap(), 128 + SIGKILL);
    for (const int end : ends)
      close(end);
  }
}

}  // namespace zarnet
