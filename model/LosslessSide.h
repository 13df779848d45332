#pragma once

#include <QString>

namespace zarnet {

/// Draws the side that plays the lossless original: "A" or "B" with probability one half each, independently
/// of every other draw, from the system's random source. Any thread.
QString drawnLosslessSide();

}  // namespace zarnet
