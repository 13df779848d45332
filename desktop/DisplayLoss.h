#pragma once

#include <functional>

namespace zarnet {

/// What the toolkit does without a display: it aborts when it finds none to start with, and ends the process
/// from within when the one in use goes away. From its construction until `opened` the first becomes a
/// sentence on standard error and exit status 1. From then on the second runs `cleanUp`, once, before the
/// process ends: there is no event loop any more then, and no display.
///
/// On X11 the process ends by `exit`. The Wayland client library ends it by `_exit`, after a warning; that is
/// where it is heard. One at a time. Interface thread.
class DisplayLoss {
 public:
  DisplayLoss();
  ~DisplayLoss();
  DisplayLoss(const DisplayLoss&) = delete;
  DisplayLoss& operator=(const DisplayLoss&) = delete;

  /// The application object stands.
  void opened(std::function<void()> cleanUp);
};

}  // namespace zarnet
