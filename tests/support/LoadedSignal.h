#pragma once

#include "audio/PCM.h"
#include "tests/support/Signals.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace zarnet::test {

/// The signal as a `PCM`, every sample bit for bit, by way of a scratch file. Requires: 48,000 Hz, two
/// channels, at least one frame.
std::shared_ptr<const PCM> loaded(const Signal& signal);

/// The samples as they lie in memory: tells 0 from −0 and one not-a-number from another.
std::vector<std::uint32_t> bits(const float* samples, std::int64_t count);

}  // namespace zarnet::test
