#include "media/LibAv.h"

#include "media/LeadingTags.h"
#include "system/DisplayText.h"
#include "system/PlatformError.h"

#include <algorithm>
#include <cerrno>
#include <new>
#include <vector>

extern "C" {
#include <libavutil/avstring.h>
}

namespace zarnet::libav {

namespace {

constexpr int ioBufferBytes = 64 * 1024;
constexpr std::size_t maximumAllocationBytes = std::size_t{64} << 20;

/// How much a file may make libav read, and so hold, before the first packet: pictures, tags, indexes.
constexpr std::int64_t headerAllowanceBytes = std::int64_t{128} << 20;

/// Every byte is needed once; packets that overlap, or a demultiplexer that searches, may take a few more.
constexpr std::int64_t readingAllowanceFactor = 4;

/// Formats of audio files, as libav names them. None of them refers to other files, save for QuickTime's
/// references, which `refuseToOpen` stops.
constexpr const char* formatNames =
    "aac,ac3,aiff,amr,asf,au,caf,dts,eac3,flac,matroska,mov,mp3,mpc,mpc8,ogg,voc,w64,wav";

int refuseToOpen(AVFormatContext*, AVIOContext**, const char*, int, AVDictionary**) {
  return AVERROR(EPERM);
}

/// The names of all audio decoders, so that no other kind runs while streams are examined.
const std::string& audioDecoderNames() {
  static const std::string names = [] {
    std::string list;
    void* iteration = nullptr;
    while (const AVCodec* codec = av_codec_iterate(&iteration)) {
      if (codec->type == AVMEDIA_TYPE_AUDIO && av_codec_is_decoder(codec) != 0)
        list += (list.empty() ? "" : ",") + std::string(codec->name);
    }
    return list;
  }();
  return names;
}

}  // namespace

Packet makePacket() {
  Packet packet(av_packet_alloc());
  if (!packet) throw std::bad_alloc();
  return packet;
}

Frame makeFrame() {
  Frame frame(av_frame_alloc());
  if (!frame) throw std::bad_alloc();
  return frame;
}

std::string errorText(int code) {
  char text[AV_ERROR_MAX_STRING_SIZE] = {};
  av_strerror(code, text, sizeof text);
  return text;
}

void initialize() {
  static const bool done = [] {
    av_log_set_level(AV_LOG_QUIET);
    av_max_alloc(maximumAllocationBytes);
    return true;
  }();
  static_cast<void>(done);
}

InputFile::InputFile(const FileHandle& source)
    : file(source), start(endOfLeadingTags(source)), size(source.size() - start) {
  initialize();
  if (file.size() == 0) fail("The file is empty");
  try {
    openContainer();
    readStreams();
  } catch (...) {
    close();
    throw;
  }
}

InputFile::~InputFile() {
  close();
}

void InputFile::close() {
  avformat_close_input(&format);
  if (io) av_freep(&io->buffer);
  avio_context_free(&io);
}

bool InputFile::readPacket(AVPacket& packet) {
  for (;;) {
    av_packet_unref(&packet);
    const int result = av_read_frame(format, &packet);
    if (failure) std::rethrow_exception(failure);
    if (result == AVERROR(ENOMEM)) throw systemError(file.location(), "could not be read", ENOMEM);
    if (result < 0) return false;
    if (packet.stream_index == stream->index) return true;
  }
}

void InputFile::fail(const char* reason) const {
  throw PlatformError(quotedName(file.location()) + " could not be opened: " + reason + ".");
}

const AVInputFormat* InputFile::recogniseFormat() const {
  constexpr int smallestScore = AVPROBE_SCORE_EXTENSION / 4 + 1;
  const AVInputFormat* recognised = nullptr;
  for (const std::int64_t probed : {4 << 10, 64 << 10, 1 << 20}) {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(std::min(probed, size)) + AVPROBE_PADDING_SIZE);
    const std::size_t count = file.readAt(start, bytes.data(), bytes.size() - AVPROBE_PADDING_SIZE);
    AVProbeData data = {"", bytes.data(), static_cast<int>(count), nullptr};
    int score = 0;
    recognised = av_probe_input_format3(&data, 1, &score);
    // Two formats that fit equally well give a score and none of them.
    const bool known = recognised && av_match_list(recognised->name, formatNames, ',') != 0;
    if (score < smallestScore || !known) recognised = nullptr;
    if (score > AVPROBE_SCORE_RETRY || size <= probed) break;
  }
  return recognised;
}

void InputFile::openContainer() {
  const AVInputFormat* recognised = recogniseFormat();
  if (!recognised) fail("It is not an audio file of a supported format");
  auto* buffer = static_cast<unsigned char*>(av_malloc(ioBufferBytes));
  if (!buffer) throw std::bad_alloc();
  io = avio_alloc_context(buffer, ioBufferBytes, 0, this, readBytes, nullptr, seekTo);
  if (!io) {
    av_free(buffer);
    throw std::bad_alloc();
  }
  format = avformat_alloc_context();
  if (!format) throw std::bad_alloc();
  format->pb = io;
  format->io_open = refuseToOpen;
  format->protocol_whitelist = av_strdup("");
  format->format_whitelist = av_strdup(formatNames);
  format->codec_whitelist = av_strdup(audioDecoderNames().c_str());
  allowance = headerAllowanceBytes;
  const int result = avformat_open_input(&format, "", recognised, nullptr);
  if (failure) std::rethrow_exception(failure);
  if (result < 0) fail("Its header is damaged or incomplete");
}

void InputFile::readStreams() {
  const int result = avformat_find_stream_info(format, nullptr);
  if (failure) std::rethrow_exception(failure);
  if (result < 0) fail("Its header is damaged or incomplete");
  for (unsigned i = 0; i < format->nb_streams; ++i) {
    AVStream* candidate = format->streams[i];
    const bool audio = candidate->codecpar->codec_type == AVMEDIA_TYPE_AUDIO;
    if (audio && !stream) {
      stream = candidate;
    } else {
      candidate->discard = AVDISCARD_ALL;
    }
  }
  if (!stream) fail("It holds no audio");
  allowance = headerAllowanceBytes + readingAllowanceFactor * size;
}

int InputFile::readBytes(void* self, std::uint8_t* target, int bytes) {
  auto& input = *static_cast<InputFile*>(self);
  if (input.failure) return AVERROR(EIO);
  try {
    if (input.allowance <= 0) input.fail("Its header is too large, or it is damaged");
    const std::size_t count =
        input.file.readAt(input.start + input.position, target, static_cast<std::size_t>(bytes));
    input.position += static_cast<std::int64_t>(count);
    input.allowance -= static_cast<std::int64_t>(count);
    return count == 0 ? AVERROR_EOF : static_cast<int>(count);
  } catch (...) {
    input.failure = std::current_exception();
    return AVERROR(EIO);
  }
}

std::int64_t InputFile::seekTo(void* self, std::int64_t offset, int whence) {
  auto& input = *static_cast<InputFile*>(self);
  switch (whence & ~AVSEEK_FORCE) {
    case AVSEEK_SIZE:
      return input.size;
    case SEEK_SET:
      break;
    case SEEK_CUR:
      offset += input.position;
      break;
    case SEEK_END:
      offset += input.size;
      break;
    default:
      return AVERROR(EINVAL);
  }
  if (offset < 0 || offset > INT64_MAX - input.start) return AVERROR(EINVAL);
  return input.position = offset;
}

}  // namespace zarnet::libav
