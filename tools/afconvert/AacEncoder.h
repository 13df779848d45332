#pragma once

#include "media/LibAv.h"
#include "tools/afconvert/ReadAhead.h"

#include <cstdint>
#include <functional>

namespace zarnet {

/// Encodes a stream as AAC (low complexity) at a constant bitrate, with libavcodec's own encoder. Not
/// thread-safe.
class AacEncoder {
 public:
  /// Takes each packet as it comes, and may empty it. Times count frames at the sample rate: the first packet
  /// lies before 0 by what the encoder puts in front, the last one is as long as the sound that is left.
  using Sink = std::function<void(AVPacket&)>;

  /// Rate in Hz, kept as it is, like the channels (1 or 2). Raises std::runtime_error when AAC knows no such
  /// rate or cannot hold that many bits.
  AacEncoder(double sampleRate, std::uint32_t channels, int bitsPerSecond, Sink sink);

  /// The opened encoder, for whoever stores its packets.
  const AVCodecContext& context() const { return *encoder; }

  /// Encodes the next frames. Requires: their samples are finite.
  void write(const FrameBlock& block);
  /// Encodes what is left. Nothing may be written afterwards.
  void finish();

 private:
  void startChunk();
  void sendChunk();
  void passPackets();
  void steer(const AVPacket& sent);

  const int nominal;  ///< bits per second
  const Sink sink;
  libav::CodecContext encoder;
  libav::Packet packet = libav::makePacket();
  libav::Frame chunk = libav::makeFrame();  ///< what the encoder gets at a time
  int filled = 0;                           ///< frames in `chunk`
  std::int64_t sentFrames = 0;
  double debt = 0;  ///< bits spent beyond the nominal bitrate
};

}  // namespace zarnet
