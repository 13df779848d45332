#include "media/CodedDecoder.h"

#include "system/DisplayText.h"
#include "system/PlatformError.h"

#include <algorithm>
#include <new>

extern "C" {
#include <libavutil/crc.h>
}

namespace zarnet {

namespace {

/// Whether the checksum at the end of a FLAC frame is right, which the decoder does not look at.
bool hasValidChecksum(const AVPacket& frame) {
  return av_crc(av_crc_get_table(AV_CRC_16_ANSI), 0, frame.data, static_cast<std::size_t>(frame.size)) == 0;
}

}  // namespace

bool isLinear(AVCodecID codec) {
  switch (codec) {
    case AV_CODEC_ID_PCM_ALAW:
    case AV_CODEC_ID_PCM_MULAW:
    case AV_CODEC_ID_PCM_VIDC:
    case AV_CODEC_ID_PCM_ZORK:
      return false;
    default:
      return codec >= AV_CODEC_ID_PCM_S16LE && codec < AV_CODEC_ID_ADPCM_IMA_QT;
  }
}

bool isLossless(AVCodecID codec) {
  return isLinear(codec) || codec == AV_CODEC_ID_FLAC || codec == AV_CODEC_ID_ALAC;
}

std::optional<SampleLayout> layoutOf(AVSampleFormat format) {
  const auto bytes = static_cast<std::uint32_t>(av_get_bytes_per_sample(format));
  switch (av_get_packed_sample_fmt(format)) {
    case AV_SAMPLE_FMT_U8:
      return SampleLayout{SampleLayout::Kind::unsignedInteger, bytes, false};
    case AV_SAMPLE_FMT_S16:
    case AV_SAMPLE_FMT_S32:
    case AV_SAMPLE_FMT_S64:
      return SampleLayout{SampleLayout::Kind::signedInteger, bytes, false};
    case AV_SAMPLE_FMT_FLT:
    case AV_SAMPLE_FMT_DBL:
      return SampleLayout{SampleLayout::Kind::floatingPoint, bytes, false};
    default:
      return std::nullopt;
  }
}

CodedDecoder::CodedDecoder(const FileHandle& source) : file(source), input(source) {
  const AVCodecParameters& parameters = *stream().codecpar;
  const AVCodec* implementation = avcodec_find_decoder(parameters.codec_id);
  codec.reset(avcodec_alloc_context3(implementation));
  if (!codec) throw std::bad_alloc();
  const bool opened = implementation && avcodec_parameters_to_context(codec.get(), &parameters) >= 0 &&
                      avcodec_open2(codec.get(), implementation, nullptr) >= 0;
  if (!opened || parameters.sample_rate <= 0 || parameters.ch_layout.nb_channels <= 0) {
    throw PlatformError(quotedName(file.location()) + " could not be opened: Its audio cannot be decoded.");
  }
  // The decoder would find no frame in it, and say nothing.
  if (parameters.codec_id == AV_CODEC_ID_FLAC && parameters.bits_per_raw_sample > 24) {
    throw PlatformError(quotedName(file.location()) +
                        " could not be opened: FLAC audio of more than 24 bits is not supported.");
  }
  codec->pkt_timebase = stream().time_base;
}

bool CodedDecoder::seekNearEnd() {
  const AVRational wholeContainer = {1, AV_TIME_BASE};
  const AVRational unit = stream().time_base;
  const std::int64_t end =
      stream().duration > 0 ? stream().duration : av_rescale_q(container().duration, wholeContainer, unit);
  const std::int64_t time = std::max<std::int64_t>(0, end - av_rescale_q(1, {1, 1}, unit));
  return av_seek_frame(input.context(), stream().index, time, AVSEEK_FLAG_BACKWARD) >= 0;
}

const AVFrame* CodedDecoder::next() {
  for (;;) {
    const int result = avcodec_receive_frame(codec.get(), frame.get());
    if (result == AVERROR_EOF) return nullptr;
    if (result == AVERROR(EAGAIN)) {
      feed();
    } else if (result == AVERROR(ENOMEM)) {
      throw systemError(file.location(), "could not be decoded", ENOMEM);
    } else if (result < 0) {
      damaged = true;
    } else if (frame->nb_samples > 0) {
      check();
      return frame.get();
    }
  }
}

void CodedDecoder::feed() {
  if (!input.readPacket(*packet)) {
    avcodec_send_packet(codec.get(), nullptr);
    return;
  }
  if (damaged && isLossless(codec->codec_id)) fail("It is damaged");
  const bool sound = codec->codec_id != AV_CODEC_ID_FLAC || hasValidChecksum(*packet);
  damaged = avcodec_send_packet(codec.get(), packet.get()) < 0 || !sound;
}

void CodedDecoder::check() {
  const AVCodecParameters& parameters = *stream().codecpar;
  if (frame->ch_layout.nb_channels != parameters.ch_layout.nb_channels ||
      frame->sample_rate != parameters.sample_rate || !layoutOf(static_cast<AVSampleFormat>(frame->format))) {
    fail("Its format changes on the way");
  }
}

void CodedDecoder::fail(const char* reason) const {
  throw PlatformError(quotedName(file.location()) + " could not be decoded: " + reason + ".");
}

}  // namespace zarnet
