#include "tools/afconvert/Convert.h"

#include "media/AudioFileReader.h"
#include "media/AudioFileWriter.h"
#include "media/M4aFile.h"
#include "system/DisplayText.h"
#include "system/FileHandle.h"
#include "system/PlatformError.h"
#include "tools/afconvert/AacEncoder.h"
#include "tools/afconvert/ReadAhead.h"
#include "tools/afconvert/Resampler.h"
#include "tools/support/Tool.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <string>

namespace zarnet {

namespace {

constexpr double workingRate = 48000;

// Beyond these the resampler takes gigabytes, or for ever. The higher one is the most that a WAVE file
// states.
constexpr double lowestRate = 1;
constexpr double highestRate = std::numeric_limits<std::uint32_t>::max();

void requireUsualForm(const AudioFileReader& reader, const std::filesystem::path& path) {
  const std::uint32_t channels = reader.processingChannels();
  if (channels > 2) {
    throw PlatformError(quotedName(path) + " could not be converted: It has " + std::to_string(channels) +
                        " channels; one or two are supported.");
  }
  const double rate = reader.processingRate();
  if (rate < lowestRate || rate > highestRate) {
    throw PlatformError(quotedName(path) + " could not be converted: A sample rate of " + formatG(rate) +
                        " Hz is not supported.");
  }
}

/// Reads the next frames. One sample that is no number, or an infinite one, would spoil all that is measured
/// and heard, and on its way through a resampler those around it.
std::int64_t readFinite(AudioFileReader& reader, const std::filesystem::path& path, float* const* planes,
                        std::int64_t frames) {
  const std::int64_t count = reader.read(planes, frames);
  const auto isFinite = [](float sample) { return std::isfinite(sample); };
  for (std::uint32_t channel = 0; channel < reader.processingChannels(); ++channel) {
    if (!std::all_of(planes[channel], planes[channel] + count, isFinite)) {
      throw PlatformError(quotedName(path) +
                          " could not be converted: It holds samples that are not finite numbers.");
    }
  }
  return count;
}

/// Creates the output, then runs `complete`, which writes it. When that fails, the file is removed; a device
/// or a pipe stays, and so does what lies there when it cannot be opened for writing at all.
template <typename Complete>
void produce(const std::filesystem::path& output, Complete complete) {
  FileHandle::createForWriting(output);
  try {
    complete();
  } catch (...) {
    removeUnfinished(output);
    throw;
  }
}

void writeLinear(const ConverterOptions& options, ReadAhead& blocks, AudioFileContainer container) {
  produce(options.output, [&] {
    AudioFileWriter writer(options.output, container, workingRate);
    for (FrameBlock block = blocks.next(); block.count > 0; block = blocks.next())
      writer.write(block.planes.data(), block.count);
    writer.finish();
  });
}

void convertToLinear(const ConverterOptions& options, const AudioFileReader& reader, ReadAhead& decoded) {
  const bool best = options.target == ConverterOptions::Target::wave;
  const AudioFileContainer container = best ? AudioFileContainer::wave : AudioFileContainer::caf;
  if (reader.processingRate() == workingRate) {
    writeLinear(options, decoded, container);
    return;
  }
  const std::uint32_t channels = reader.processingChannels();
  Resampler resampler(decoded, channels, reader.processingRate(), workingRate,
                      best ? Resampler::Quality::best : Resampler::Quality::standard);
  ReadAhead resampled(
      channels, [&](float* const* planes, std::int64_t frames) { return resampler.read(planes, frames); });
  writeLinear(options, resampled, container);
}

void convertToAac(const ConverterOptions& options, const AudioFileReader& reader, ReadAhead& decoded) {
  FrameBlock block = decoded.next();
  if (block.count == 0)
    throw PlatformError(quotedName(options.input) + " could not be converted: It holds no sound.");
  std::optional<M4aFile> file;
  AacEncoder encoder(reader.processingRate(), reader.processingChannels(), options.bitsPerSecond,
                     [&](AVPacket& packet) { file->write(packet); });
  produce(options.output, [&] {
    file.emplace(options.output, encoder.context());
    for (; block.count > 0; block = decoded.next())
      encoder.write(block);
    encoder.finish();
    file->finish();
  });
}

}  // namespace

void convert(const ConverterOptions& options) {
  AudioFileReader reader(options.input);
  requireUsualForm(reader, options.input);
  requireTwoFiles(options.input, options.output);
  ReadAhead decoded(reader.processingChannels(), [&](float* const* planes, std::int64_t frames) {
    return readFinite(reader, options.input, planes, frames);
  });
  if (options.target == ConverterOptions::Target::aac) {
    convertToAac(options, reader, decoded);
  } else {
    convertToLinear(options, reader, decoded);
  }
}

}  // namespace zarnet
