#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <sys/types.h>

namespace zarnet {

/// One running child process. Waiting is split in two, so that an owner can forget the child under its own
/// lock before the process number is given back to the system and might name a stranger.
class ChildProcess {
 public:
  /// Starts the executable directly, without a shell, with exactly these arguments. The child has the
  /// environment, working folder and standard input of this process; both its output streams go to `output`;
  /// no other file is inherited. It starts with an empty signal mask, default signal dispositions and a
  /// process group of its own. Raises `PlatformError` when the program cannot be started. Where this process
  /// ignores SIGCHLD, that signal gets its default disposition back: exit statuses would be lost otherwise.
  ChildProcess(const std::filesystem::path& executable, const std::vector<std::string>& arguments,
               int output);
  /// Kills the child and its process group, and reaps it, when `reap` was not called.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  /// Asks the child, and what it started in its process group, to end (SIGTERM). Does nothing once it has
  /// been reaped. Any thread, but not beside `reap`.
  void terminate() const;

  /// Blocks until the child has ended; its process number stays reserved. Repeated calls return at once.
  void waitUntilExited() const;

  /// Gives the process number back; returns the exit status, or 128 + the signal's number for a child that a
  /// signal ended. Blocks until the child has ended. Repeated calls return the same value.
  int reap();

 private:
  pid_t pid = -1;
  int status = 0;
  bool reaped = false;
};

}  // namespace zarnet
