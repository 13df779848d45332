#pragma once

namespace zarnet {

/// Whether anything may change gradually. Off while the desktop asks for reduced motion. Interface thread.
bool motionAllowed();
void setMotionAllowed(bool allowed);

}  // namespace zarnet
