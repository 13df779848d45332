#pragma once

#include <filesystem>

namespace zarnet {

/// Decodes an Ogg Vorbis file of 48 kHz stereo to a raw sample file (interleaved little-endian 32-bit floats,
/// no header, not clipped). Delivers exactly the frames that the file's granule positions state. The links of
/// a chained file follow each other. Works on both halves of the file at the same time.
///
/// Raises std::runtime_error when the input is no Ogg Vorbis file, when any link of it is not 48 kHz stereo,
/// or when a part or the end of it is missing or not where its granule positions say, and `PlatformError`
/// when a file cannot be opened, read or written; the output is then removed.
void decode(const std::filesystem::path& input, const std::filesystem::path& output);

}  // namespace zarnet
