#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>

namespace zarnet::test {

/// Runs the event loop of this thread until the condition holds; false when it still does not after `limit`.
/// Requires: an application object.
template <typename Condition>
bool eventually(const Condition& condition, std::chrono::seconds limit = std::chrono::seconds(60)) {
  const QDeadlineTimer deadline(limit);
  QTimer look;  // the condition may come true without an event
  look.start(std::chrono::milliseconds(5));
  while (!condition()) {
    if (deadline.hasExpired()) return false;
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  return true;
}

/// Runs everything that the event loop has waiting.
inline void runPendingEvents() {
  QCoreApplication::sendPostedEvents();
  QCoreApplication::processEvents();
}

}  // namespace zarnet::test
