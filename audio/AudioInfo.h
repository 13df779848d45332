#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace zarnet {

/// A source file as it is stored.
struct AudioInfo {
  double duration;         ///< seconds: length in frames / rate of the decoded signal; in (0, 1200]
  double rate;             ///< Hz, of the stored stream
  std::uint32_t channels;  ///< 1 or 2
  std::uint32_t bits;      ///< bits per channel; 0 where the stream description carries no depth
  std::string format;      ///< "PCM", "Apple Lossless" or "FLAC"

  /// One line for the user: "24-bit / 44.1 kHz · PCM", or "48 kHz · FLAC" when `bits` is 0.
  std::string summary() const;
};

/// Decides whether a file may take part in a listening test and describes it. Keeps nothing open. Any thread.
///
/// Raises, the first that applies:
/// - `PlatformError` when the file cannot be opened as audio;
/// - `AppError` "NAME is already lossy. …" when its stream is not linear PCM, Apple Lossless or FLAC;
/// - `AppError` "This file contains no playable audio." without a finite duration above 0;
/// - `AppError` "Please use a track or excerpt up to 20 minutes long." above 1200.0 s;
/// - `AppError` "Please use mono or stereo audio." with other than 1 or 2 channels.
AudioInfo inspectAudio(const std::filesystem::path& url);

}  // namespace zarnet
