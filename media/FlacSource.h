#pragma once

#include "media/AudioSource.h"
#include "media/FlacFile.h"
#include "system/FileHandle.h"

#include <memory>

namespace zarnet {

/// Reads a FLAC stream with the format's own library. `file` outlives the source. Besides what
/// `AudioFileReader` says, reading raises at the end when the file states a checksum that its audio does not
/// match.
std::unique_ptr<AudioSource> makeFlacSource(const FileHandle& file, const FlacFile& flac);

}  // namespace zarnet
