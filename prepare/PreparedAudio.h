#pragma once

#include "audio/AudioInfo.h"
#include "audio/PCM.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <utility>

namespace zarnet {

/// One prepared comparison. In each pair the first element belongs to `original`, the second to `lossy`.
struct PreparedAudio {
  std::filesystem::path encodedURL;     ///< the lossy encoding, the file offered for export
  std::shared_ptr<const PCM> original;  ///< the source in the working format
  std::shared_ptr<const PCM> lossy;     ///< the encoding decoded back to the working format
  AudioInfo info;                       ///< the source file's description
  std::int64_t offset;                  ///< frames; lossy frame i + offset plays with original frame i
  double correlation;                   ///< match score of the alignment, in [−1, 1]
  std::pair<float, float> gains;        ///< linear factors applied at playback
  std::pair<double, double> loudness;   ///< LUFS; both 0.0 when loudness matching is off
};

}  // namespace zarnet
