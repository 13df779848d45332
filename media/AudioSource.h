#pragma once

#include "media/AudioFileReader.h"
#include "media/LinearPCM.h"
#include "system/FileHandle.h"

#include <cstdint>
#include <memory>

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

/// Reads linear PCM straight from the file. `file` outlives the source.
std::unique_ptr<AudioSource> makeLinearSource(const FileHandle& file, const LinearPCM& pcm);

/// Reads any other audio file through libav. `file` outlives the source. Raises as the constructor of
/// `AudioFileReader` does.
std::unique_ptr<AudioSource> makeCodedSource(const FileHandle& file);

}  // namespace zarnet
