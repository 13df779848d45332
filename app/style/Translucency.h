#pragma once

namespace zarnet {

/// Whether a window may be translucent here: on Wayland, and on X11 while a compositing manager runs.
/// Elsewhere clear pixels would be black. Requires: the application object.
bool canBeTranslucent();

}  // namespace zarnet
