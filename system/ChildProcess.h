#pragma once

#include "system/Descriptor.h"

#include <filesystem>
#include <string>
#include <vector>

#include <sys/types.h>

namespace zarnet {

/// One running child process. Waiting is split in two, so that an owner can forget the child under its own
/// lock before the process number is given back to the system and might name a stranger.
///
/// The child does not outlive the *thread* that started it, however that ends: start it and wait for it in
/// one thread.
class ChildProcess {
 public:
  /// Starts the executable directly, without a shell, with exactly these arguments. The child has the
  /// environment, working folder and standard input of this process; both its output streams go to `output`;
  /// no other file is inherited. It starts with an empty signal mask, default signal dispositions and a
  /// process group of its own, and is killed when the thread that started it ends, with this process or
  /// without. Raises `PlatformError` when the program cannot be started. Where this process ignores SIGCHLD,
  /// that signal gets its default disposition back: exit statuses would be lost otherwise.
  ChildProcess(const std::filesystem::path& executable, const std::vector<std::string>& arguments,
               int output);
  /// Kills the child and its process group, and reaps it, when `reap` was not called.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  /// Asks the child, and what it started in its process group, to end (SIGTERM). Never waits. Does nothing
  /// once it has been reaped. Any thread, but not beside `reap`.
  void terminate() const;
  /// The same without asking (SIGKILL).
  void killAtOnce() const;

  /// Blocks until the child has ended; its process number stays reserved. A child that goes on for two
  /// seconds after `terminate`, stopped or not, is killed. Repeated calls return at once.
  void waitUntilExited() const;

  /// Gives the process number back; returns the exit status, or 128 + the signal's number for a child that a
  /// signal ended. Blocks until the child has ended; what is left of its process group is killed. Repeated
  /// calls return the same value.
  int reap();

 private:
  const Descriptor requested;  ///< an event: `terminate` was called
  pid_t pid = -1;
  Descriptor running;  ///< names the child; becomes readable when it ends
  int status = 0;
  bool reaped = false;
};

}  // namespace zarnet
