#pragma once

#include <QSocketNotifier>
#include <functional>

namespace zarnet {

/// Wakes the interface thread from anywhere: another thread, or a signal handler.
class Doorbell {
 public:
  /// `answer` runs on the creating thread, from its event loop, once or more after each ring; rings that come
  /// together share one answer. It may not destroy the bell. Raises `PlatformError` when the system has no
  /// file descriptor left.
  explicit Doorbell(std::function<void()> answer);
  ~Doorbell();
  Doorbell(const Doorbell&) = delete;
  Doorbell& operator=(const Doorbell&) = delete;

  /// Any thread; may be called from a signal handler.
  void ring() const noexcept;

 private:
  int descriptor;
  QSocketNotifier notifier;
};

}  // namespace zarnet
