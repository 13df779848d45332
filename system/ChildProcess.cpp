#include "system/ChildProcess.h"

#include "system/PlatformError.h"

#include <cerrno>

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zarnet {

namespace {

/// What posix_spawn is told about the child besides its command line.
class LaunchSettings {
 public:
  explicit LaunchSettings(int output) {
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output, STDERR_FILENO);
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes, &signals);
    sigfillset(&signals);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    posix_spawnattr_setpgroup(&attributes, 0);
    posix_spawnattr_setflags(&attributes,
                             POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
  }
  ~LaunchSettings() {
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
  }
  LaunchSettings(const LaunchSettings&) = delete;
  LaunchSettings& operator=(const LaunchSettings&) = delete;

  posix_spawn_file_actions_t actions;
  posix_spawnattr_t attributes;
};

/// A parent that ignores SIGCHLD (a disposition that survives exec) would never learn how its children ended.
void keepExitStatuses() {
  struct sigaction action {};
  sigaction(SIGCHLD, nullptr, &action);
  if (action.sa_handler != SIG_IGN && (action.sa_flags & SA_NOCLDWAIT) == 0) return;
  if (action.sa_handler == SIG_IGN) action.sa_handler = SIG_DFL;
  action.sa_flags &= ~SA_NOCLDWAIT;
  sigaction(SIGCHLD, &action, nullptr);
}

}  // namespace

ChildProcess::ChildProcess(const std::filesystem::path& executable, const std::vector<std::string>& arguments,
                           int output) {
  std::vector<char*> commandLine = {const_cast<char*>(executable.c_str())};
  for (const std::string& argument : arguments) {
    if (argument.find('\0') != std::string::npos)
      throw systemError(executable, "could not be started", EINVAL);
    commandLine.push_back(const_cast<char*>(argument.c_str()));
  }
  commandLine.push_back(nullptr);

  keepExitStatuses();
  const LaunchSettings settings(output);
  const int error = posix_spawn(&pid, executable.c_str(), &settings.actions, &settings.attributes,
                                commandLine.data(), environ);
  if (error != 0) throw systemError(executable, "could not be started", error);
}

ChildProcess::~ChildProcess() {
  if (reaped) return;
  kill(-pid, SIGKILL);
  reap();
}

void ChildProcess::terminate() const {
  if (reaped) return;
  kill(-pid, SIGTERM);
  kill(-pid, SIGCONT);  // a stopped child would otherwise sit on the request
}

void ChildProcess::waitUntilExited() const {
  if (reaped) return;
  siginfo_t information;
  while (waitid(P_PID, static_cast<id_t>(pid), &information, WEXITED | WNOWAIT) != 0 && errno == EINTR) {
  }
}

int ChildProcess::reap() {
  if (reaped) return status;
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
