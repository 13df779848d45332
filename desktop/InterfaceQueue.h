#pragma once

#include "desktop/Doorbell.h"

#include <atomic>
#include <deque>
#include <functional>

namespace zarnet {

/// Whether the caller is on the thread of the application object, where windows and the model live. True as
/// long as there is no application object.
bool onInterfaceThread();

/// Hands work to the interface thread, where it runs from the event loop, each piece on its own and in the
/// order in which it was posted. What has not run when the queue goes is dropped.
///
/// Takes no lock. It stands in for Qt's queued invocation, whose hand-over a thread sanitizer cannot see
/// through, so that true races would drown in false alarms.
class InterfaceQueue {
 public:
  /// On the interface thread. Raises `PlatformError` when the system has no file descriptor left.
  InterfaceQueue();
  /// On the interface thread, and not from posted work. Requires: nobody posts any more.
  ~InterfaceQueue();
  InterfaceQueue(const InterfaceQueue&) = delete;
  InterfaceQueue& operator=(const InterfaceQueue&) = delete;

  /// Any thread. Returns at once. Requires: `work` does not raise.
  void post(std::function<void()> work);

 private:
  struct Letter {
    std::function<void()> work;
    Letter* older;
  };

  void collect();
  void deliver();

  std::atomic<Letter*> newest{nullptr};
  std::deque<std::function<void()>> arrived;  ///< interface thread only
  Doorbell bell;
};

}  // namespace zarnet
