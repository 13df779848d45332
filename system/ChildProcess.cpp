#include "system/ChildProcess.h"

#include "system/PlatformError.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <span>

#include <fcntl.h>
#include <linux/close_range.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zarnet {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds patience{2};  // with a child that was asked to end

/// A parent that ignores SIGCHLD (a disposition that survives exec) would never learn how its children ended.
void keepExitStatuses() {
  struct sigaction action {};
  sigaction(SIGCHLD, nullptr, &action);
  if (action.sa_handler != SIG_IGN && (action.sa_flags & SA_NOCLDWAIT) == 0) return;
  if (action.sa_handler == SIG_IGN) action.sa_handler = SIG_DFL;
  action.sa_flags &= ~SA_NOCLDWAIT;
  sigaction(SIGCHLD, &action, nullptr);
}

/// The same open file under a number that the child's standard streams do not take.
Descriptor aboveStandardStreams(int descriptor) {
  return Descriptor(fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

/// What the child has to know.
struct Launch {
  const char* program;
  char* const* commandLine;
  int output;
  int report;  ///< takes the errno value of what failed; closed by itself once the program runs
  pid_t parent;
};

/// Makes the program of the child. Until then it lives in the memory of its parent, so it does only what a
/// signal handler may do.
[[noreturn]] void becomeProgram(const Launch& launch) {
  struct sigaction byDefault {};
  byDefault.sa_handler = SIG_DFL;
  for (int number = 1; number < NSIG; ++number)
    sigaction(number, &byDefault, nullptr);
  sigset_t none;
  sigemptyset(&none);
  // No attribute of posix_spawn asks for the signal at the parent's death, which is why this is done by hand.
  const bool ready = setpgid(0, 0) == 0 && prctl(PR_SET_PDEATHSIG, SIGKILL) == 0 &&
                     dup2(launch.output, STDOUT_FILENO) >= 0 && dup2(launch.output, STDERR_FILENO) >= 0 &&
                     close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC) == 0 &&
                     sigprocmask(SIG_SETMASK, &none, nullptr) == 0;
  // A parent that was gone before the signal was asked for sends none.
  if (getppid() != launch.parent) _exit(EXIT_FAILURE);
  if (ready) execve(launch.program, launch.commandLine, environ);
  const int error = errno;
  if (write(launch.report, &error, sizeof error) < 0) _exit(EXIT_FAILURE);
  _exit(EXIT_FAILURE);
}

/// Starts the child; its number, or −1 with the errno value of what failed.
pid_t startChild(const Launch& launch) {
  // No handler of this process may run in the child.
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  const pid_t child = vfork();
  if (child == 0) becomeProgram(launch);
  const int error = errno;
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  errno = error;
  return child;
}

/// Waits until one of the descriptors is readable; false once the limit, if there is one, is over.
bool waitUntilReadable(std::span<pollfd> descriptors, const Clock::time_point* limit) {
  for (;;) {
    int milliseconds = -1;
    if (limit != nullptr) {
      const auto rest = std::chrono::ceil<std::chrono::milliseconds>(*limit - Clock::now());
      milliseconds = static_cast<int>(std::max<std::int64_t>(rest.count(), 0));
    }
    const int ready = poll(descriptors.data(), descriptors.size(), milliseconds);
    if (ready > 0) return true;
    if (ready == 0) return false;
  }
}

}  // namespace

ChildProcess::ChildProcess(const std::filesystem::path& executable, const std::vector<std::string>& arguments,
                           int output)
    : requested(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  const auto failure = [&](int number) { return systemError(executable, "could not be started", number); };
  if (requested.get() < 0) throw failure(errno);
  std::vector<char*> commandLine = {const_cast<char*>(executable.c_str())};
  for (const std::string& argument : arguments) {
    if (argument.find('\0') != std::string::npos) throw failure(EINVAL);
    commandLine.push_back(const_cast<char*>(argument.c_str()));
  }
  commandLine.push_back(nullptr);
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw failure(errno);
  const Descriptor report(ends[0]);
  Descriptor reporting(ends[1]);
  reporting = aboveStandardStreams(ends[1]);
  const Descriptor target = aboveStandardStreams(output);
  if (reporting.get() < 0 || target.get() < 0) throw failure(errno);

  keepExitStatuses();
  pid = startChild({executable.c_str(), commandLine.data(), target.get(), reporting.get(), getpid()});
  if (pid < 0) throw failure(errno);
  reporting = Descriptor();
  int error = 0;
  ssize_t told = -1;
  do {
    told = read(report.get(), &error, sizeof error);
  } while (told < 0 && errno == EINTR);
  running = Descriptor(static_cast<int>(syscall(SYS_pidfd_open, pid, 0)));
  if (told == 0 && running.get() < 0) error = errno;
  if (error == 0) return;
  killAtOnce();
  waitpid(pid, nullptr, 0);
  throw failure(error);
}

ChildProcess::~ChildProcess() {
  if (reaped) return;
  killAtOnce();
  reap();
}

void ChildProcess::terminate() const {
  if (reaped) return;
  kill(-pid, SIGTERM);
  kill(-pid, SIGCONT);  // a stopped child would otherwise sit on the request
  eventfd_write(requested.get(), 1);
}

void ChildProcess::killAtOnce() const {
  if (!reaped) kill(-pid, SIGKILL);
}

void ChildProcess::waitUntilExited() const {
  if (reaped) return;
  std::array<pollfd, 2> events = {pollfd{running.get(), POLLIN, 0}, pollfd{requested.get(), POLLIN, 0}};
  waitUntilReadable(events, nullptr);
  if (events[0].revents != 0) return;
  const Clock::time_point limit = Clock::now() + patience;
  const std::span<pollfd> ending(events.data(), 1);
  if (waitUntilReadable(ending, &limit)) return;
  killAtOnce();
  waitUntilReadable(ending, nullptr);
}

int ChildProcess::reap() {
  if (reaped) return status;
  waitUntilExited();
  killAtOnce();
  int ending = 0;
  pid_t answer = -1;
  do {
    answer = waitpid(pid, &ending, 0);
  } while (answer < 0 && errno == EINTR);
  reaped = true;
  if (answer < 0) {
    status = 255;  // somebody else took the answer; never mistake that for success
  } else {
    status = WIFSIGNALED(ending) ? 128 + WTERMSIG(ending) : WEXITSTATUS(ending);
  }
  return status;
}

}  // namespace zarnet
