#pragma once

#include <cstdint>

namespace zarnet {

// The only format of this program: raw samples are interleaved 32-bit floats.
inline constexpr int channels = 2;
inline constexpr long sampleRate = 48000;  // Hz
inline constexpr std::int64_t frameBytes = channels * sizeof(float);
inline constexpr int chunkFrames = 4096;  // what is worked on at a time

}  // namespace zarnet
