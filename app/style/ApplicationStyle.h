#pragma once

namespace zarnet {

/// Gives the toolkit's own controls (menus, pop-up lists, file panels, tooltips) the typeface and metrics of
/// the application's. Call once, with the application object in place and before the first window.
void applyApplicationStyle();

}  // namespace zarnet
