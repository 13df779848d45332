#include "desktop/QuitSignals.h"

#include <atomic>
#include <cstddef>
#include <utility>

namespace zarnet {

namespace {

constexpr std::array quitSignals = {SIGTERM, SIGINT, SIGHUP};

std::atomic<const Doorbell*> rung{nullptr};

void ringBell(int) {
  if (const Doorbell* bell = rung.load()) bell->ring();
}

}  // namespace

QuitSignals::QuitSignals(std::function<void()> quit) : bell(std::move(quit)) {
  rung = &bell;
  struct sigaction action {};
  action.sa_handler = ringBell;
  action.sa_flags = SA_RESTART;
  for (std::size_t i = 0; i < quitSignals.size(); ++i) {
    sigaction(quitSignals[i], nullptr, &before[i]);
    if (before[i].sa_handler != SIG_IGN) sigaction(quitSignals[i], &action, nullptr);
  }
}

QuitSignals::~QuitSignals() {
  for (std::size_t i = 0; i < quitSignals.size(); ++i)
    sigaction(quitSignals[i], &before[i], nullptr);
  rung = nullptr;
}

}  // namespace zarnet
