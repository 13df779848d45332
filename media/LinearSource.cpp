#include "media/LinearSource.h"

#include "media/SampleConversion.h"
#include "system/DisplayText.h"
#include "system/PlatformError.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace zarnet {

namespace {

/// Small enough to stay in the second-level cache between reading and conversion.
constexpr std::int64_t bufferBytes = 1 << 18;

class LinearSource : public AudioSource {
 public:
  LinearSource(const FileHandle& source, const LinearPCM& linear)
      : file(source),
        pcm(linear),
        description{linear.sampleRate, fourCharacterCode("lpcm"), linear.channels, linear.bits},
        targets(linear.channels) {}

  const StreamDescription& fileFormat() const override { return description; }
  std::int64_t length() override { return pcm.frames; }

  std::int64_t read(float* const* planes, std::int64_t frames) override {
    const std::int64_t bufferFrames = std::max<std::int64_t>(1, bufferBytes / pcm.frameBytes());
    const std::int64_t wanted = std::min(frames, pcm.frames - position);
    buffer.resize(static_cast<std::size_t>(bufferFrames * pcm.frameBytes()));
    for (std::int64_t done = 0; done < wanted;) {
      const std::int64_t count = std::min(bufferFrames, wanted - done);
      const auto bytes = static_cast<std::size_t>(count * pcm.frameBytes());
      if (file.readAt(pcm.offset + position * pcm.frameBytes(), buffer.data(), bytes) < bytes) {
        throw PlatformError(quotedName(file.location()) +
                            " could not be read: It became shorter in the meantime.");
      }
      for (std::size_t channel = 0; channel < targets.size(); ++channel)
        targets[channel] = planes[channel] + done;
      convertSamples(pcm.layout, buffer.data(), pcm.channels, count, targets.data());
      position += count;
      done += count;
    }
    return std::max<std::int64_t>(wanted, 0);
  }

 private:
  const FileHandle& file;
  const LinearPCM pcm;
  const StreamDescription description;
  std::int64_t position = 0;
  std::vector<std::byte> buffer;
  std::vector<float*> targets;
};

}  // namespace

std::unique_ptr<AudioSource> makeLinearSource(const FileHandle& file, const LinearPCM& pcm) {
  return std::make_unique<LinearSource>(file, pcm);
}

}  // namespace zarnet
