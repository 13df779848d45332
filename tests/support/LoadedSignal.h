#pragma once

#include "audio/PCM.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/Signals.h"

#include <bit>
#include <cstdint>
#include <memory>
#include <vector>

namespace zarnet::test {

/// The signal as a `PCM`, every sample bit for bit, by way of a scratch file. Requires: 48,000 Hz, two
/// channels, at least one frame.
inline std::shared_ptr<const PCM> loaded(const Signal& signal) {
  const ScratchFolder scratch;
  return std::make_shared<const PCM>(writeWave(scratch / "signal.wav", signal));
}

/// The samples as they lie in memory: tells 0 from −0 and one not-a-number from another.
inline std::vector<std::uint32_t> bits(const float* samples, std::int64_t count) {
  std::vector<std::uint32_t> result;
  for (std::int64_t i = 0; i < count; ++i)
    result.push_back(std::bit_cast<std::uint32_t>(samples[i]));
  return result;
}

}  // namespace zarnet::test
