#pragma once

#include <chrono>

#include <sys/types.h>

namespace zarnet {

/// Asks the desktop's RealtimeKit, on the system bus, to let a thread of this process (its system number) run
/// at this real-time priority. False when it refuses, is not there, or does not answer within `limit`.
bool askRealtimeKit(pid_t thread, int priority, std::chrono::milliseconds limit);

/// Lets one thread of this process run before all ordinary ones, where the system grants it: because the
/// user may, or else through RealtimeKit. Where it does not, nothing is changed and nobody is told.
///
/// RealtimeKit demands a limit to what such a thread may compute without a pause. It is set, for good, for
/// the whole process, to 100 ms; a thread that reaches it becomes an ordinary one and goes on, instead of
/// ending the process. One object at a time.
class RealTimePriority {
 public:
  /// Returns within `limit`, in a few milliseconds as a rule.
  RealTimePriority(pid_t thread, std::chrono::milliseconds limit);
  /// Requires: the thread has ended.
  ~RealTimePriority();
  RealTimePriority(const RealTimePriority&) = delete;
  RealTimePriority& operator=(const RealTimePriority&) = delete;
};

}  // namespace zarnet
