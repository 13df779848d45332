#include "tests/support/EventLoop.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

namespace zarnet::test {

bool eventually(const std::function<bool()>& condition, std::chrono::seconds limit) {
  const QDeadlineTimer deadline(limit);
  QTimer look;  // the condition may come true without an event
  look.start(std::chrono::milliseconds(5));
  while (!condition()) {
    if (deadline.hasExpired()) return false;
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  return true;
}

void runPendingEvents() {
  QCoreApplication::sendPostedEvents();
  QCoreApplication::processEvents();
}

}  // namespace zarnet::test
