#include "media/AudioFileReader.h"

#include "media/AudioSource.h"
#include "media/CodedSource.h"
#include "media/FlacSource.h"
#include "media/LinearPCM.h"
#include "media/LinearSource.h"
#include "system/FileHandle.h"

namespace zarnet {

struct AudioFileReader::State {
  explicit State(const std::filesystem::path& path) : file(FileHandle::openOrdinaryFile(path)) {
    if (const auto pcm = findLinearPCM(file)) {
      source = makeLinearSource(file, *pcm);
    } else if (const auto flac = findFlac(file)) {
      source = makeFlacSource(file, *flac);
    } else {
      source = makeCodedSource(file);
    }
  }

  FileHandle file;
  std::unique_ptr<AudioSource> source;
};

AudioFileReader::AudioFileReader(const std::filesystem::path& path) : state(std::make_unique<State>(path)) {}

AudioFileReader::~AudioFileReader() = default;

const StreamDescription& AudioFileReader::fileFormat() const {
  return state->source->fileFormat();
}

double AudioFileReader::processingRate() const {
  return fileFormat().sampleRate;
}

std::uint32_t AudioFileReader::processingChannels() const {
  return fileFormat().channelsPerFrame;
}

std::int64_t AudioFileReader::length() {
  return state->source->length();
}

std::int64_t AudioFileReader::read(float* const* planes, std::int64_t frames) {
  return state->source->read(planes, frames);
}

}  // namespace zarnet
