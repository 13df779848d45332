#pragma once

#include "media/LibAv.h"
#include "media/SampleConversion.h"
#include "system/FileHandle.h"

#include <optional>
#include <string_view>

namespace zarnet {

bool isLinear(AVCodecID codec);
/// Linear PCM, FLAC and Apple Lossless.
bool isLossless(AVCodecID codec);

/// How decoded samples lie in memory; nothing for a format that cannot be converted.
std::optional<SampleLayout> layoutOf(AVSampleFormat format);

/// Decodes the audio stream of a file from its start or from a place near its end. Trims what the decoder
/// trims by itself: the delay and padding of MP3 and Ogg streams, the priming of MPEG-4 ones.
class CodedDecoder {
 public:
  /// `source` outlives the decoder. Raises as the constructor of `AudioFileReader` does.
  explicit CodedDecoder(const FileHandle& source);

  AVStream& stream() const { return *input.audioStream(); }
  const AVFormatContext& container() const { return *input.context(); }
  std::string_view containerName() const { return container().iformat->name; }
  /// Goes on with the packet a second before the end, or an earlier one. False when it cannot.
  bool seekNearEnd();
  /// What the decoder was fed with last.
  const AVPacket& latestPacket() const { return *packet; }
  /// The next frame that is not empty; nothing at the end. Damage is passed over in a lossy stream; in a
  /// lossless one it raises, unless nothing follows it: then the file was cut off there.
  const AVFrame* next();

 private:
  void feed();
  void check();
  [[noreturn]] void fail(const char* reason) const;

  const FileHandle& file;
  libav::InputFile input;
  libav::CodecContext codec;
  libav::Packet packet = libav::makePacket();
  libav::Frame frame = libav::makeFrame();
  bool damaged = false;  ///< the latest packet was
};

}  // namespace zarnet
