#pragma once

#include "media/AudioSource.h"
#include "media/LinearPCM.h"
#include "system/FileHandle.h"

#include <memory>

namespace zarnet {

/// Reads linear PCM straight from the file. `file` outlives the source.
std::unique_ptr<AudioSource> makeLinearSource(const FileHandle& file, const LinearPCM& pcm);

}  // namespace zarnet
