#pragma once

#include <atomic>
#include <functional>
#include <thread>

#include <signal.h>

namespace zarnet {

/// Blocks the signals that ask a program to stop in this thread and in every one that it starts, so that none
/// ends the process and `StopSignals` can wait for them: SIGINT, SIGTERM, and SIGHUP unless it is ignored, as
/// nohup wants it. Returns them.
sigset_t blockStopSignals();

/// Waits for signals on a thread of its own. What is called there is no signal handler and may do anything
/// that a thread may.
class StopSignals {
 public:
  /// `stop` is called for the first signal; it asks the other threads to come to an end. `leave` is called
  /// for each one that comes a second or more after the first, when somebody is tired of waiting; a sooner
  /// one belongs to the same request and is passed over. Requires: `signals` are blocked in every thread.
  StopSignals(const sigset_t& signals, std::function<void()> stop, std::function<void()> leave);
  /// Ends the thread. The signals stay blocked.
  ~StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  /// The number of the first signal, 0 before one came. Any thread.
  int received() const { return first; }

 private:
  void wait();

  const sigset_t signals;
  const std::function<void()> stop;
  const std::function<void()> leave;
  std::atomic<int> first = 0;
  std::atomic<bool> ended = false;
  std::thread thread;
};

}  // namespace zarnet
