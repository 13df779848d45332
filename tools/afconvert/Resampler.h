#pragma once

#include "tools/afconvert/ReadAhead.h"

#include <cstdint>
#include <memory>

struct soxr;

namespace zarnet {

/// Changes the sample rate of a stream with a linear-phase filter that computes in double precision or, at
/// standard quality, single precision. It is flat up to 0.91 of half the lower rate and leaves nothing above
/// that half. Its delay is compensated and its tail flushed: n frames at rate r give n × (output rate) / r,
/// rounded, and a signal keeps its place in time. A full-scale input may overshoot ±1.0; nothing is clipped.
class Resampler {
 public:
  enum class Quality {
    standard,  ///< 20 bits: errors about 130 dB below a sine
    best,      ///< 28 bits: errors about 150 dB below a sine, the rounding to 32-bit floats included
  };

  /// `input` must outlive the resampler; its blocks are taken on the thread that calls `read`. Rates in Hz.
  /// Raises std::runtime_error for a pair of rates that cannot be converted.
  Resampler(ReadAhead& input, std::uint32_t channels, double inputRate, double outputRate, Quality quality);
  ~Resampler();
  Resampler(const Resampler&) = delete;
  Resampler& operator=(const Resampler&) = delete;

  /// A `FrameSource`. Raises what `input` raises.
  std::int64_t read(float* const* planes, std::int64_t frames);

 private:
  ReadAhead& input;
  soxr* const engine;
  FrameBlock pending;  ///< what the engine has not taken yet
  bool inputEnded = false;
};

}  // namespace zarnet
