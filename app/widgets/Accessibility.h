#pragma once

namespace zarnet {

/// Tells the accessibility bridge the roles and states of this application's own controls. Call once, before
/// the first window is made.
void installAccessibility();

}  // namespace zarnet
