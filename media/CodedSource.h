#pragma once

#include "media/AudioSource.h"
#include "system/FileHandle.h"

#include <memory>

namespace zarnet {

/// Reads any other audio file through libav. `file` outlives the source. Raises as the constructor of
/// `AudioFileReader` does.
std::unique_ptr<AudioSource> makeCodedSource(const FileHandle& file);

}  // namespace zarnet
