#include "platform/ChildProcess.h"
#include "platform/FileHandle.h"
#include "tests/support/Programs.h"
#include "tests/support/ScratchFolder.h"

#include <array>
#include <csignal>
#include <string>
#include <vector>

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

/// Runs a program to its end.
Ending runToEnd(const std::filesystem::path& executable, const std::vector<std::string>& arguments) {
  const test::ScratchFolder scratch;
  const FileHandle output = FileHandle::createForWriting(scratch / "output");
  ChildProcess child(executable, arguments, output.descriptor());
  child.waitUntilExited();
  const int status = child.reap();
  EXPECT_EQ(child.reap(), status);
  return {status, test::readFile(scratch / "output")};
}

Ending runScript(const std::string& script) {
  return runToEnd("/bin/sh", {"-c", script});
}

/// Blocks one signal for the calling thread for the length of a scope.
class BlockedSignal {
 public:
  explicit BlockedSignal(int signal) {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, signal);
    pthread_sigmask(SIG_BLOCK, &set, &before);
  }
  ~BlockedSignal() { pthread_sigmask(SIG_SETMASK, &before, nullptr); }

 private:
  sigset_t before;
};

/// Sets the disposition of one signal for the length of a scope.
class Disposition {
 public:
  Disposition(int number, void (*handler)(int)) : signal(number), before(std::signal(number, handler)) {}
  ~Disposition() { std::signal(signal, before); }

 private:
  int signal;
  void (*before)(int);
};

}  // namespace

TEST(ChildProcess, InheritsNoOpenFileButTheStandardStreams) {
  // As a library would leave them: without close-on-exec, at low and high numbers.
  const int low = open("/dev/null", O_RDONLY);
  const int high = fcntl(low, F_DUPFD, 700);
  EXPECT_EQ(runToEnd("/bin/ls", {"/proc/self/fd"}).output, "0\n1\n2\n3\n") << "3 is the listing itself";
  close(low);
  close(high);
}

TEST(ChildProcess, StartsWithCleanSignalsInAProcessGroupOfItsOwn) {
  const BlockedSignal blocked(SIGTERM);
  const Disposition ignored(SIGPIPE, SIG_IGN);
  // 32 and 33 belong to the C library, which ignores them in every child.
  const std::string status = runToEnd("/bin/cat", {"/proc/self/status"}).output;
  EXPECT_THAT(status, testing::HasSubstr("\nSigBlk:\t0000000000000000\n"));
  EXPECT_THAT(status, testing::ContainsRegex("\nSigIgn:\t0000000[01][08]0000000\n"));
  const Ending groups =
      runScript(R"(read -r pid name state parent group rest </proc/self/stat; echo $((pid - group)))");
  EXPECT_EQ(groups.output, "0\n");
}

TEST(ChildProcess, TellsHowAChildEnded) {
  EXPECT_EQ(runScript("exit 0").status, 0);
  EXPECT_EQ(runScript("exit 255").status, 255);
  EXPECT_EQ(runScript("kill -KILL $$").status, 128 + SIGKILL);
  EXPECT_EQ(runScript("kill -SEGV $$").status, 128 + SIGSEGV);
  {
    const Disposition ignored(SIGCHLD, SIG_IGN);  // the system would throw exit statuses away
    EXPECT_EQ(runScript("exit 3").status, 3);
  }
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

TEST(ChildProcess, KeepsTheNumberOfAChildThatHasEndedUntilItIsReaped) {
  const test::ScratchFolder scratch;
  const FileHandle output = FileHandle::createForWriting(scratch / "output");
  ChildProcess child("/bin/true", {}, output.descriptor());
  child.waitUntilExited();
  child.waitUntilExited();
  EXPECT_EQ(test::livingChildren(), 1);
  child.terminate();
  EXPECT_EQ(child.reap(), 0);
  EXPECT_EQ(test::livingChildren(), 0);
}

}  // namespace zarnet
