#include "audio/AudioInfo.h"

#include "audio/AppError.h"
#include "media/AudioFileReader.h"
#include "system/DisplayText.h"

#include <cmath>
#include <optional>

namespace zarnet {

namespace {

constexpr double longestDuration = 1200.0;  // seconds

std::optional<std::string> losslessFormatName(std::uint32_t formatID) {
  switch (formatID) {
    case fourCharacterCode("lpcm"):
      return "PCM";
    case fourCharacterCode("alac"):
      return "Apple Lossless";
    case fourCharacterCode("flac"):
      return "FLAC";
    default:
      return std::nullopt;
  }
}

}  // namespace

AudioInfo inspectAudio(const std::filesystem::path& url) {
  AudioFileReader file(url);
  const StreamDescription& stored = file.fileFormat();
  // Before the length is asked for, so that no long lossy file is walked through only to be refused.
  const std::optional<std::string> format = losslessFormatName(stored.formatID);
  if (!format) {
    throw AppError(displayText(url.filename()) +
                   " is already lossy. Choose its original WAV, AIFF, FLAC or Apple Lossless file.");
  }
  const double duration = static_cast<double>(file.length()) / file.processingRate();
  if (!std::isfinite(duration) || duration <= 0) throw AppError("This file contains no playable audio.");
  if (duration > longestDuration) throw AppError("Please use a track or excerpt up to 20 minutes long.");
  if (file.processingChannels() != 1 && file.processingChannels() != 2)
    throw AppError("Please use mono or stereo audio.");
  return {duration, stored.sampleRate, stored.channelsPerFrame, stored.bitsPerChannel, *format};
}

std::string AudioInfo::summary() const {
  const std::string depth = bits != 0 ? std::to_string(bits) + "-bit / " : "";
  return depth + formatG(rate / 1000.0) + " kHz · " + format;
}

}  // namespace zarnet
