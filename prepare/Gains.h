#pragma once

#include <utility>

namespace zarnet {

/// The linear playback gains of (original, lossy). The louder version is lowered to the loudness of the
/// quieter one (LUFS); both are then lowered by one common factor where the larger of the gained peaks
/// (linear) would exceed 0.98. No gain is above 1. Equal loudness, as (0.0, 0.0) for unmatched versions, and
/// peaks of at most 0.98 give (1, 1), and so do two silent signals.
std::pair<float, float> playbackGains(std::pair<double, double> loudness, std::pair<float, float> peaks);

}  // namespace zarnet
