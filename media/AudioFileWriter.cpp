#include "media/AudioFileWriter.h"

#include "media/ByteOrder.h"
#include "system/DisplayText.h"
#include "system/FileHandle.h"
#include "system/Interleaving.h"
#include "system/PlatformError.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace zarnet {

namespace {

constexpr std::uint32_t channels = 2;
constexpr std::int64_t sampleBytes = sizeof(float);
constexpr std::int64_t frameBytes = sampleBytes * channels;
constexpr std::int64_t bufferFrames = (1 << 18) / frameBytes;

/// What the size of a WAVE file counts besides the samples: its header without the first eight bytes.
constexpr std::int64_t waveOverheadBytes = 50;
constexpr std::int64_t maximumWaveBytes = std::numeric_limits<std::uint32_t>::max() - waveOverheadBytes;

/// A Core Audio Format header up to the first sample; `dataBytes` bytes of samples follow.
std::string cafHeader(double rate, std::int64_t dataBytes) {
  constexpr std::uint32_t floatLittleEndian = 1 | 2;
  constexpr std::int64_t descriptionBytes = 32;
  constexpr std::int64_t editCountBytes = 4;
  std::string header = "caff";
  appendBigEndian(header, std::uint16_t{1});  // version
  appendBigEndian(header, std::uint16_t{0});  // flags
  header += "desc";
  appendBigEndian(header, descriptionBytes);
  appendBigEndian(header, rate);
  header += "lpcm";
  appendBigEndian(header, floatLittleEndian);
  appendBigEndian(header, static_cast<std::uint32_t>(frameBytes));  // bytes a packet
  appendBigEndian(header, std::uint32_t{1});                        // frames a packet
  appendBigEndian(header, channels);
  appendBigEndian(header, static_cast<std::uint32_t>(8 * sampleBytes));
  header += "data";
  appendBigEndian(header, editCountBytes + dataBytes);
  appendBigEndian(header, std::uint32_t{0});  // edit count
  return header;
}

/// A RIFF WAVE header up to the first sample.
std::string waveHeader(double rate, std::int64_t dataBytes) {
  constexpr std::uint16_t ieeeFloat = 3;
  const auto wholeRate = static_cast<std::uint32_t>(std::lround(rate));
  std::string header = "RIFF";
  appendLittleEndian(header, static_cast<std::uint32_t>(waveOverheadBytes + dataBytes));
  header += "WAVEfmt ";
  appendLittleEndian(header, std::uint32_t{18});
  appendLittleEndian(header, ieeeFloat);
  appendLittleEndian(header, static_cast<std::uint16_t>(channels));
  appendLittleEndian(header, wholeRate);
  appendLittleEndian(header, static_cast<std::uint32_t>(wholeRate * frameBytes));
  appendLittleEndian(header, static_cast<std::uint16_t>(frameBytes));
  appendLittleEndian(header, static_cast<std::uint16_t>(8 * sampleBytes));
  appendLittleEndian(header, std::uint16_t{0});  // no extension
  header += "fact";
  appendLittleEndian(header, std::uint32_t{4});
  appendLittleEndian(header, static_cast<std::uint32_t>(dataBytes / frameBytes));
  header += "data";
  appendLittleEndian(header, static_cast<std::uint32_t>(dataBytes));
  return header;
}

AudioFileContainer containerNamedBy(const std::filesystem::path& path) {
  const std::filesystem::path extension = path.extension();
  if (extension == ".caf") return AudioFileContainer::caf;
  if (extension == ".wav") return AudioFileContainer::wave;
  throw PlatformError(quotedName(path) +
                      " could not be created: Only .caf and .wav audio files can be written.");
}

}  // namespace

struct AudioFileWriter::State {
  State(const std::filesystem::path& path, AudioFileContainer kind, double sampleRate);

  std::string header() const {
    return container == AudioFileContainer::caf ? cafHeader(rate, dataBytes) : waveHeader(rate, dataBytes);
  }
  /// Frames that the buffer has room for.
  std::int64_t roomFor() const { return bufferFrames - pendingFrames; }
  void flush();

  FileHandle file;
  AudioFileContainer container;
  double rate;
  std::vector<float> pending;      ///< interleaved, not yet in the file
  std::int64_t pendingFrames = 0;  ///< in `pending`, from its start
  std::int64_t dataOffset = 0;     ///< of the first sample in the file
  std::int64_t dataBytes = 0;      ///< of samples taken, those in `pending` included
  bool finished = false;
};

AudioFileWriter::State::State(const std::filesystem::path& path, AudioFileContainer kind, double sampleRate)
    : file(FileHandle::createForWriting(path)),
      container(kind),
      rate(sampleRate),
      pending(static_cast<std::size_t>(bufferFrames) * channels) {
  const std::string start = header();
  dataOffset = static_cast<std::int64_t>(start.size());
  file.writeAt(0, start.data(), start.size());
}

void AudioFileWriter::State::flush() {
  const std::int64_t bytes = frameBytes * pendingFrames;
  file.writeAt(dataOffset + dataBytes - bytes, pending.data(), static_cast<std::size_t>(bytes));
  pendingFrames = 0;
}

AudioFileWriter::AudioFileWriter(const std::filesystem::path& path, double sampleRate)
    : AudioFileWriter(path, containerNamedBy(path), sampleRate) {}

AudioFileWriter::AudioFileWriter(const std::filesystem::path& path, AudioFileContainer container,
                                 double sampleRate)
    : state(std::make_unique<State>(path, container, sampleRate)) {}

AudioFileWriter::~AudioFileWriter() {
  try {
    finish();
  } catch (const PlatformError&) {
    // Whoever wants to know calls finish().
  }
}

void AudioFileWriter::write(const float* const* planes, std::int64_t frames) {
  const bool limited = state->container == AudioFileContainer::wave;
  if (limited && frames > (maximumWaveBytes - state->dataBytes) / frameBytes) {
    throw PlatformError(quotedName(state->file.location()) +
                        " could not be written: A WAV file holds no more than 4 GB.");
  }
  for (std::int64_t done = 0; done < frames;) {
    const std::int64_t count = std::min(frames - done, state->roomFor());
    interleave(planes[0] + done, planes[1] + done, count,
               state->pending.data() + state->pendingFrames * channels);
    state->pendingFrames += count;
    state->dataBytes += frameBytes * count;
    done += count;
    if (state->roomFor() == 0) state->flush();
  }
}

void AudioFileWriter::finish() {
  if (state->finished) return;
  state->flush();
  const std::string header = state->header();
  state->file.writeAt(0, header.data(), header.size());
  state->finished = true;
  state->file.close();
}

}  // namespace zarnet
