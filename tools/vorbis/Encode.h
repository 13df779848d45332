#pragma once

#include <filesystem>

namespace zarnet {

/// Encodes a raw sample file (interleaved little-endian 32-bit float stereo at 48 kHz, no header) as Ogg
/// Vorbis in the mode whose nominal bitrate is `kbps`. Samples beyond full scale are encoded as they are. The
/// same input gives the same bytes. An input without frames gives a valid file without audio.
///
/// Raises std::runtime_error when the input is no whole number of frames or when there is no mode for that
/// bitrate, and `PlatformError` when a file cannot be opened, read or written; the output is then removed.
void encode(const std::filesystem::path& input, const std::filesystem::path& output, int kbps);

}  // namespace zarnet
