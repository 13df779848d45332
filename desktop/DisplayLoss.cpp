#include "desktop/DisplayLoss.h"

#include <QCoreApplication>
#include <QString>
#include <QThread>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace zarnet {

namespace {

constexpr unsigned long cleanUpLimit = 10'000;  // ms

bool opening = false;
std::function<void()> atLoss;
QtMessageHandler messagesBefore = nullptr;

void runAtLoss() {
  if (const std::function<void()> cleanUp = std::exchange(atLoss, nullptr)) cleanUp();
}

void hear(QtMsgType type, const QMessageLogContext& context, const QString& text) {
  if (opening && type == QtFatalMsg) {
    std::fputs("Zarnet needs a display to open its window; zarnet-prepare works without one.\n", stderr);
    std::_Exit(1);
  }
  messagesBefore(type, context, text);
  // "The Wayland connection broke. Did the Wayland compositor die?", or "… experienced a fatal error: …".
  if (qApp == nullptr || !text.startsWith(QStringLiteral("The Wayland connection"))) return;
  if (QThread::currentThread() == qApp->thread()) return runAtLoss();
  // The library's own thread would end the process; it waits for the interface thread to do so.
  QMetaObject::invokeMethod(
      qApp,
      [] {
        runAtLoss();
        std::_Exit(1);
      },
      Qt::QueuedConnection);
  QThread::msleep(cleanUpLimit);
}

}  // namespace

DisplayLoss::DisplayLoss() {
  opening = true;
  messagesBefore = qInstallMessageHandler(hear);
}

DisplayLoss::~DisplayLoss() {
  atLoss = nullptr;
  qInstallMessageHandler(messagesBefore);
}

void DisplayLoss::opened(std::function<void()> cleanUp) {
  opening = false;
  atLoss = std::move(cleanUp);
  static const int registered = std::atexit(runAtLoss);
  static_cast<void>(registered);
}

}  // namespace zarnet
