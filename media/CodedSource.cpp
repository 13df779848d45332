#include "media/CodedSource.h"

#include "media/CodedDecoder.h"
#include "media/LinearPCM.h"
#include "system/DisplayText.h"
#include "system/PlatformError.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <optional>
#include <vector>

namespace zarnet {

namespace {

constexpr std::int64_t endless = std::numeric_limits<std::int64_t>::max();

std::uint32_t formatIDOf(AVCodecID codec) {
  if (isLinear(codec)) return fourCharacterCode("lpcm");
  switch (codec) {
    case AV_CODEC_ID_FLAC:
      return fourCharacterCode("flac");
    case AV_CODEC_ID_ALAC:
      return fourCharacterCode("alac");
    case AV_CODEC_ID_MP2:
      return fourCharacterCode(".mp2");
    case AV_CODEC_ID_MP3:
      return fourCharacterCode(".mp3");
    case AV_CODEC_ID_AAC:
      return fourCharacterCode("aac ");
    case AV_CODEC_ID_AC3:
      return fourCharacterCode("ac-3");
    case AV_CODEC_ID_VORBIS:
      return fourCharacterCode("vorb");
    case AV_CODEC_ID_OPUS:
      return fourCharacterCode("opus");
    case AV_CODEC_ID_PCM_ALAW:
      return fourCharacterCode("alaw");
    case AV_CODEC_ID_PCM_MULAW:
      return fourCharacterCode("ulaw");
    default:
      return fourCharacterCode("????");
  }
}

StreamDescription describe(const AVCodecParameters& parameters) {
  StreamDescription description;
  description.sampleRate = parameters.sample_rate;
  description.formatID = formatIDOf(parameters.codec_id);
  description.channelsPerFrame = static_cast<std::uint32_t>(parameters.ch_layout.nb_channels);
  if (isLossless(parameters.codec_id)) {
    const int bits = parameters.bits_per_raw_sample > 0 ? parameters.bits_per_raw_sample
                                                        : parameters.bits_per_coded_sample;
    description.bitsPerChannel = static_cast<std::uint32_t>(std::max(bits, 0));
  }
  return description;
}

/// The number of frames that a tag of an MPEG-4 file states, which names delay, padding and total in
/// hexadecimal numbers: " 00000000 00000840 000001C0 0000000000C7B9C0 …". 0 without a tag that makes sense.
std::int64_t framesStatedByTag(const AVDictionary* tags) {
  const AVDictionaryEntry* entry = av_dict_get(tags, "iTunSMPB", nullptr, 0);
  unsigned long long total = 0;
  const bool read = entry && std::sscanf(entry->value, "%*x %*x %*x %16llx", &total) == 1;
  return read && total <= static_cast<unsigned long long>(endless) ? static_cast<std::int64_t>(total) : 0;
}

/// The number of a FLAC frame: of the frame itself or, where blocks differ in length, of its first sample.
/// Requires: the frame is whole.
std::int64_t numberOf(const AVPacket& frame) {
  // As UTF-8 has it, with up to seven bytes (RFC 9639, section 9.1.5).
  const std::uint8_t* bytes = frame.data + 4;
  const int count = std::countl_one(*bytes);
  std::int64_t number = *bytes & (0x7F >> count);
  for (int i = 1; i < count; ++i)
    number = number << 6 | (bytes[i] & 0x3F);
  return number;
}

bool countsSamples(const AVPacket& frame) {
  return (frame.data[1] & 1) != 0;
}

class EmptySource : public AudioSource {
 public:
  explicit EmptySource(const CafStream& stream)
      : description{stream.sampleRate, stream.formatID, stream.channels, 0} {}

  const StreamDescription& fileFormat() const override { return description; }
  std::int64_t length() override { return 0; }
  std::int64_t read(float* const*, std::int64_t) override { return 0; }

 private:
  const StreamDescription description;
};

class CodedSource : public AudioSource {
 public:
  CodedSource(const FileHandle& source, const std::optional<CafStream>& caf);

  const StreamDescription& fileFormat() const override { return description; }
  std::int64_t length() override;
  std::int64_t read(float* const* planes, std::int64_t frames) override;

 private:
  bool isFlac() const { return decoder.stream().codecpar->codec_id == AV_CODEC_ID_FLAC; }
  std::int64_t announcedFrames() const;
  std::optional<std::int64_t> confirmedFrames() const;
  std::optional<std::int64_t> endOfFlac() const;
  std::int64_t countAll() const;
  void convert(float* const* planes, std::int64_t offset, int count);

  const FileHandle& file;
  CodedDecoder decoder;
  const StreamDescription description;
  std::int64_t dropped = 0;      ///< frames at the start that are not meant to be heard
  std::int64_t limit = endless;  ///< frames after those that are
  std::int64_t position = 0;     ///< frames delivered
  std::int64_t toDrop = 0;
  std::int64_t counted = -1;
  const AVFrame* frame = nullptr;
  int frameOffset = 0;  ///< of the first sample of `frame` that was not delivered
  std::vector<float*> targets;
};

CodedSource::CodedSource(const FileHandle& source, const std::optional<CafStream>& caf)
    : file(source),
      decoder(source),
      description(describe(*decoder.stream().codecpar)),
      targets(description.channelsPerFrame) {
  if (caf) {
    // The packet table of FLAC is not needed, and wrong where its writer took all blocks to be of one length.
    if (!isFlac() && caf->validFrames > 0) {
      dropped = caf->primingFrames;
      limit = caf->validFrames;
    }
  } else if (decoder.containerName().starts_with("mov")) {
    const std::int64_t tagged = framesStatedByTag(decoder.container().metadata);
    const std::int64_t stated = tagged > 0 ? tagged : announcedFrames();
    if (stated > 0) limit = stated;
  }
  toDrop = dropped;
}

/// The total that the container states in whole frames; 0 when it states none, or none that can be relied on.
std::int64_t CodedSource::announcedFrames() const {
  const AVStream& stream = decoder.stream();
  const AVRational frameTime = {1, stream.codecpar->sample_rate};
  const bool exact = stream.time_base.num == 1 && frameTime.den % stream.time_base.den == 0;
  if (!exact || stream.duration <= 0) return 0;
  return av_rescale_q(stream.duration, stream.time_base, frameTime);
}

/// The number of frames of a lossless file, when its last packets end where its container says that it ends.
std::optional<std::int64_t> CodedSource::confirmedFrames() const {
  if (decoder.containerName() == "ogg") return std::nullopt;  // a damaged page shows only on the way there
  if (dropped > 0 || !isLossless(decoder.stream().codecpar->codec_id)) return std::nullopt;
  if (isFlac()) return endOfFlac();
  const std::int64_t announced = limit < endless ? limit : announcedFrames();
  if (announced == 0) return std::nullopt;
  CodedDecoder tail(file);
  if (!tail.seekNearEnd()) return std::nullopt;
  std::int64_t end = 0;
  std::int64_t fullEnd = 0;  // if the last packet were as long as the longest
  std::int64_t longest = 0;
  while (const AVFrame* last = tail.next()) {
    if (last->pts == AV_NOPTS_VALUE) return std::nullopt;
    const AVRational frameTime = {1, last->sample_rate};
    const std::int64_t first = av_rescale_q(last->pts, tail.stream().time_base, frameTime);
    if (first > endless / 2) return std::nullopt;
    end = first + last->nb_samples;
    longest = std::max<std::int64_t>(longest, last->nb_samples);
    fullEnd = first + longest;
  }
  // An edit list or a packet table may end before the last packet does; a packet table may count the last
  // packet as full although it is not.
  const bool confirmed = end == announced || (end > announced && limit == announced) ||
                         (end < announced && limit == announced && fullEnd == announced);
  return confirmed ? std::optional(std::min(end, limit)) : std::nullopt;
}

/// The number of frames up to the end of the last packet, when that packet has the number that fits the time
/// at which its container puts it. Writers of CAF may give every packet an average length: there, the number
/// has to be that of such lengths.
std::optional<std::int64_t> CodedSource::endOfFlac() const {
  CodedDecoder tail(file);
  const AVRational unit = tail.stream().time_base;
  const AVRational frameTime = {1, tail.stream().codecpar->sample_rate};
  if (!tail.seekNearEnd()) return std::nullopt;
  std::int64_t end = 0;
  std::int64_t blockFrames = 0;  // of the packet before, like the next
  double timeBefore = 0;
  while (const AVFrame* last = tail.next()) {
    const AVPacket& packet = tail.latestPacket();
    if (last->pts == AV_NOPTS_VALUE) return std::nullopt;
    const std::int64_t number = numberOf(packet);
    const std::int64_t first = countsSamples(packet) ? number : number * blockFrames;
    const auto time = static_cast<double>(last->pts);  // a damaged file may state any
    const bool inTime = std::abs(time - static_cast<double>(av_rescale_q(first, frameTime, unit))) <= 1;
    const bool inTurn = decoder.containerName() == "caf" && !countsSamples(packet) &&
                        time == static_cast<double>(number) * (time - timeBefore);
    blockFrames = last->nb_samples;
    timeBefore = time;
    end = inTime || inTurn ? first + blockFrames : 0;
  }
  return end > 0 ? std::optional(std::min(end, limit)) : std::nullopt;
}

std::int64_t CodedSource::countAll() const {
  CodedDecoder walker(file);
  std::int64_t count = 0;
  while (const AVFrame* next = walker.next())
    count += next->nb_samples;
  return std::clamp<std::int64_t>(count - dropped, 0, limit);
}

std::int64_t CodedSource::length() {
  if (counted < 0) {
    const auto confirmed = confirmedFrames();
    counted = confirmed ? *confirmed : countAll();
  }
  return counted;
}

std::int64_t CodedSource::read(float* const* planes, std::int64_t frames) {
  const std::int64_t wanted = std::min(frames, limit - position);
  std::int64_t done = 0;
  while (done < wanted) {
    if (!frame || frameOffset == frame->nb_samples) {
      frameOffset = 0;
      frame = decoder.next();
      if (!frame) break;
      frameOffset = static_cast<int>(std::min<std::int64_t>(toDrop, frame->nb_samples));
      toDrop -= frameOffset;
      continue;
    }
    const auto count =
        static_cast<int>(std::min<std::int64_t>(frame->nb_samples - frameOffset, wanted - done));
    convert(planes, done, count);
    frameOffset += count;
    done += count;
  }
  position += done;
  return done;
}

/// Converts the next `count` samples of `frame` to the planes, from `offset` on.
void CodedSource::convert(float* const* planes, std::int64_t offset, int count) {
  const auto format = static_cast<AVSampleFormat>(frame->format);
  const SampleLayout layout = *layoutOf(format);
  const std::uint32_t channels = description.channelsPerFrame;
  for (std::uint32_t channel = 0; channel < channels; ++channel)
    targets[channel] = planes[channel] + offset;
  const bool planar = av_sample_fmt_is_planar(format) != 0;
  const std::size_t start =
      std::size_t{layout.bytes} * (planar ? 1 : channels) * static_cast<std::size_t>(frameOffset);
  const auto bytesOf = [&](std::uint32_t plane) {
    return reinterpret_cast<const std::byte*>(frame->extended_data[plane]) + start;
  };
  if (!planar) return convertSamples(layout, bytesOf(0), channels, count, targets.data());
  for (std::uint32_t channel = 0; channel < channels; ++channel)
    convertSamples(layout, bytesOf(channel), 1, count, &targets[channel]);
}

}  // namespace

std::unique_ptr<AudioSource> makeCodedSource(const FileHandle& file) {
  const std::optional<CafStream> caf = findCafStream(file);
  if (caf && !(std::isfinite(caf->sampleRate) && caf->sampleRate > 0)) {
    throw PlatformError(quotedName(file.location()) +
                        " could not be opened: It states no possible sample rate.");
  }
  if (caf && caf->empty) return std::make_unique<EmptySource>(*caf);
  return std::make_unique<CodedSource>(file, caf);
}

}  // namespace zarnet
