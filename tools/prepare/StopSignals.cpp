#include "tools/prepare/StopSignals.h"

#include <chrono>
#include <utility>

namespace zarnet {

sigset_t blockStopSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGINT);
  sigaddset(&signals, SIGTERM);
  struct sigaction hangup {};
  sigaction(SIGHUP, nullptr, &hangup);
  if (hangup.sa_handler != SIG_IGN) sigaddset(&signals, SIGHUP);
  pthread_sigmask(SIG_BLOCK, &signals, nullptr);
  return signals;
}

StopSignals::StopSignals(const sigset_t& awaited, std::function<void()> onFirst,
                         std::function<void()> onLater)
    : signals(awaited), stop(std::move(onFirst)), leave(std::move(onLater)), thread([this] { wait(); }) {}

StopSignals::~StopSignals() {
  ended = true;
  pthread_kill(thread.native_handle(), SIGINT);  // one of those awaited: it only wakes the thread
  thread.join();
}

void StopSignals::wait() {
  std::chrono::steady_clock::time_point firstTime;
  for (int number = 0;;) {
    if (sigwait(&signals, &number) != 0) continue;
    if (ended) return;
    const auto now = std::chrono::steady_clock::now();
    if (first == 0) {
      first = number;
      firstTime = now;
      stop();
    } else if (now - firstTime >= std::chrono::seconds(1)) {
      leave();
    }
  }
}

}  // namespace zarnet
