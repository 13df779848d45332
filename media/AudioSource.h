#pragma once

#include "media/StreamDescription.h"

#include <cstdint>

namespace zarnet {

/// One of the ways to read an audio file that stand behind `AudioFileReader`, whose documentation holds for
/// these operations too.
class AudioSource {
 public:
  virtual ~AudioSource() = default;

  virtual const StreamDescription& fileFormat() const = 0;
  virtual std::int64_t length() = 0;
  virtual std::int64_t read(float* const* planes, std::int64_t frames) = 0;
};

}  // namespace zarnet
