#pragma once

#include "system/FileHandle.h"

#include <cstdint>
#include <exception>
#include <memory>
#include <string>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

/// Owners and helpers for the C objects of libavformat and libavcodec.
namespace zarnet::libav {

struct Deleter {
  void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
  void operator()(AVPacket* packet) const { av_packet_free(&packet); }
  void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};

using CodecContext = std::unique_ptr<AVCodecContext, Deleter>;
using Packet = std::unique_ptr<AVPacket, Deleter>;
using Frame = std::unique_ptr<AVFrame, Deleter>;

/// An empty packet or frame. Raise std::bad_alloc when there is no memory.
Packet makePacket();
Frame makeFrame();

/// What an error code of libav means, without a full stop: "Invalid data found when processing input".
std::string errorText(int code);

/// Prepares libav for the whole process, once however often it is called, from any thread: its own messages
/// are kept from the terminal, and no single allocation of it may exceed 64 MiB.
void initialize();

/// An audio file opened for demultiplexing. Its format is told by its content among those of audio files, and
/// libav reads it through a descriptor of our own: it never sees a name that it could take for a protocol,
/// and it cannot open anything else. Bytes in front of the audio that hold an ID3 tag are left out.
class InputFile {
 public:
  /// Requires: `file` was opened by `FileHandle::openOrdinaryFile` and outlives this object; its reading
  /// position is neither used nor moved. Raises a `PlatformError` when the file is empty or not an audio file
  /// that can be demultiplexed.
  explicit InputFile(const FileHandle& file);
  ~InputFile();
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  AVFormatContext* context() const { return format; }
  /// The first audio stream. Of the others the demultiplexer delivers as little as it can.
  AVStream* audioStream() const { return stream; }
  /// Reads the next packet of the audio stream. Returns false at the end, which a file that is damaged
  /// reaches early; raises a `PlatformError` when the file system fails.
  bool readPacket(AVPacket& packet);

 private:
  [[noreturn]] void fail(const char* reason) const;
  const AVInputFormat* recogniseFormat() const;
  void openContainer();
  void readStreams();
  void close();
  static int readBytes(void* self, std::uint8_t* target, int size);
  static std::int64_t seekTo(void* self, std::int64_t offset, int whence);

  const FileHandle& file;
  std::int64_t start = 0;      ///< where libav sees the file begin
  std::int64_t size = 0;       ///< from there on
  std::int64_t position = 0;   ///< from there on
  std::int64_t allowance = 0;  ///< bytes that may still be read before the file is taken for a trap
  std::exception_ptr failure;  ///< of the file system, on its way through libav
  AVIOContext* io = nullptr;
  AVFormatContext* format = nullptr;
  AVStream* stream = nullptr;
};

}  // namespace zarnet::libav
