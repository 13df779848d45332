#pragma once

#include <filesystem>

namespace zarnet {

/// Turns a raw sample file (interleaved little-endian 32-bit float stereo at 48 kHz, no header) into an audio
/// file whose container follows from the name of `output`, sample for sample. Streams in chunks of 4,096
/// frames. An empty input gives a valid file of 0 frames.
///
/// Raises `PlatformError` when a file cannot be opened, read or written, and `AppError` "The decoded Vorbis
/// audio is incomplete." when the input is no whole number of frames; the output then holds the frames before
/// that chunk.
void rawPCMToCAF(const std::filesystem::path& input, const std::filesystem::path& output);

}  // namespace zarnet
