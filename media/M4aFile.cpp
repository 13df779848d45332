#include "media/M4aFile.h"

#include "media/LibAv.h"
#include "system/DisplayText.h"
#include "system/PlatformError.h"

#include <new>
#include <string>

namespace zarnet {

M4aFile::M4aFile(const std::filesystem::path& location, const AVCodecContext& encoder) : path(location) {
  try {
    create(encoder);
  } catch (...) {
    close();
    throw;
  }
}

M4aFile::~M4aFile() {
  close();
}

void M4aFile::create(const AVCodecContext& encoder) {
  libav::initialize();
  if (avformat_alloc_output_context2(&format, nullptr, "ipod", nullptr) < 0) throw std::bad_alloc();
  stream = avformat_new_stream(format, nullptr);
  if (!stream) throw std::bad_alloc();
  check(avcodec_parameters_from_context(stream->codecpar, &encoder));
  stream->time_base = encoder.time_base;
  // The name of the protocol in front keeps the rest of the name from being read as one.
  const int opened = avio_open(&format->pb, ("file:" + path.string()).c_str(), AVIO_FLAG_WRITE);
  if (opened < 0)
    throw PlatformError(quotedName(path) + " could not be created: " + libav::errorText(opened) + ".");
  // The length that the edit list states counts in units of the movie: without this they were milliseconds.
  AVDictionary* settings = nullptr;
  av_dict_set_int(&settings, "movie_timescale", encoder.sample_rate, 0);
  const int started = avformat_write_header(format, &settings);
  av_dict_free(&settings);
  check(started);
}

void M4aFile::write(AVPacket& packet) {
  packet.stream_index = stream->index;
  check(av_write_frame(format, &packet));
  av_packet_unref(&packet);
}

void M4aFile::finish() {
  check(av_write_trailer(format));
  avio_flush(format->pb);
  check(format->pb->error);
  check(avio_closep(&format->pb));
}

void M4aFile::check(int result) const {
  if (result < 0)
    throw PlatformError(quotedName(path) + " could not be written: " + libav::errorText(result) + ".");
}

void M4aFile::close() noexcept {
  if (!format) return;
  avio_closep(&format->pb);
  avformat_free_context(format);
}

}  // namespace zarnet
