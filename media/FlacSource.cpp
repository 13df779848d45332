#include "media/FlacSource.h"

#include "media/FlacDecoder.h"
#include "system/DisplayText.h"
#include "system/PlatformError.h"

#include <algorithm>
#include <optional>

namespace zarnet {

namespace {

class FlacSource : public AudioSource {
 public:
  FlacSource(const FileHandle& source, const FlacFile& found)
      : file(source),
        flac(found),
        description{static_cast<double>(found.header.sampleRate), fourCharacterCode("flac"),
                    found.header.channels, found.header.bits},
        decoder(found.header, flacFrames(source, found)) {}

  const StreamDescription& fileFormat() const override { return description; }

  std::int64_t length() override {
    if (counted < 0) counted = isTotalConfirmed() ? flac.header.totalFrames : countAll();
    return counted;
  }

  std::int64_t read(float* const* planes, std::int64_t frames) override {
    std::int64_t done = 0;
    while (done < frames) {
      if (blockOffset == blockFrames) {
        if (ended) break;
        ended = !advance(decoder);
        blockFrames = ended ? 0 : decoder.blockFrames();
        blockOffset = 0;
        continue;
      }
      const std::int64_t count = std::min(blockFrames - blockOffset, frames - done);
      for (std::uint32_t channel = 0; channel < description.channelsPerFrame; ++channel)
        std::copy_n(decoder.plane(channel) + blockOffset, count, planes[channel] + done);
      blockOffset += count;
      done += count;
    }
    return done;
  }

 private:
  bool advance(FlacDecoder& walker) const;
  bool isTotalConfirmed() const;
  std::int64_t countAll() const;
  [[noreturn]] void fail(const char* reason) const;

  const FileHandle& file;
  const FlacFile flac;
  const StreamDescription description;
  FlacDecoder decoder;
  bool ended = false;
  std::int64_t blockFrames = 0;
  std::int64_t blockOffset = 0;  ///< of the first frame that was not delivered
  std::int64_t counted = -1;
};

/// Goes to the next block; false at the end. What follows the last whole block is no damage: other programs
/// append their tags, and a checksum tells whether something is missing.
bool FlacSource::advance(FlacDecoder& walker) const {
  switch (walker.next()) {
    case FlacDecoder::Step::block:
      return true;
    case FlacDecoder::Step::damage:
      fail("It is damaged");
    case FlacDecoder::Step::changedFormat:
      fail("Its format changes on the way");
    case FlacDecoder::Step::end:
      break;
  }
  if (!walker.matchesChecksum()) fail("Its audio does not match its checksum");
  return false;
}

/// Whether the last block says itself that it ends where the header says that the stream ends.
bool FlacSource::isTotalConfirmed() const {
  if (flac.header.totalFrames == 0) return false;
  FlacDecoder tail(flac.header, lastFlacFrames(file, flac));
  std::int64_t end = 0;
  for (auto step = tail.next(); step != FlacDecoder::Step::end; step = tail.next()) {
    const bool begins = end == 0 && step == FlacDecoder::Step::damage;
    if (step != FlacDecoder::Step::block && !begins) return false;
    end = tail.blockStart() + tail.blockFrames();
  }
  return end == flac.header.totalFrames;
}

std::int64_t FlacSource::countAll() const {
  FlacDecoder walker(flac.header, flacFrames(file, flac));
  std::int64_t count = 0;
  while (advance(walker))
    count += walker.blockFrames();
  return count;
}

void FlacSource::fail(const char* reason) const {
  throw PlatformError(quotedName(file.location()) + " could not be decoded: " + reason + ".");
}

}  // namespace

std::unique_ptr<AudioSource> makeFlacSource(const FileHandle& file, const FlacFile& flac) {
  return std::make_unique<FlacSource>(file, flac);
}

}  // namespace zarnet
