#include "app/style/Motion.h"

namespace zarnet {

namespace {
bool allowed = true;
}

bool motionAllowed() {
  return allowed;
}

void setMotionAllowed(bool allowedNow) {
  allowed = allowedNow;
}

}  // namespace zarnet
