#pragma once

#include "desktop/Doorbell.h"

#include <array>
#include <functional>

#include <signal.h>

namespace zarnet {

/// Makes SIGTERM, SIGINT and SIGHUP an orderly end of the program: while this object lives, they run `quit`
/// on the interface thread, from its event loop, instead of killing the process. A signal that the process
/// was started to ignore (as "nohup" does with SIGHUP) stays ignored. One at a time.
class QuitSignals {
 public:
  /// Interface thread. `quit` usually ends the event loop. Raises `PlatformError` as `Doorbell` does.
  explicit QuitSignals(std::function<void()> quit);
  /// Gives the signals back to what they meant before.
  ~QuitSignals();
  QuitSignals(const QuitSignals&) = delete;
  QuitSignals& operator=(const QuitSignals&) = delete;

 private:
  Doorbell bell;
  std::array<struct sigaction, 3> before{};
};

}  // namespace zarnet
