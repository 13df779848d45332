#include "tools/vorbis/Encode.h"

#include "system/DisplayText.h"
#include "system/FileHandle.h"
#include "system/Interleaving.h"
#include "tools/vorbis/Format.h"
#include "tools/vorbis/OutputFile.h"
#include "tools/vorbis/Owned.h"

#include <stdexcept>
#include <string>
#include <vector>

#include <ogg/ogg.h>
#include <vorbis/codec.h>
#include <vorbis/vorbisenc.h>

namespace zarnet {

namespace {

// The container wants the streams of one file told apart, and here there is only one. A fixed number, unlike
// a random one, makes the encoding depend on its input alone: it can be compared and reproduced byte by byte.
constexpr int serialNumber = 1;

class Encoder {
 public:
  Encoder(int kbps, OutputPart& target) : output(target) {
    vorbis_info_init(info.get());
    // The nominal bitrate picks the mode. The bitrate management that comes with it is switched off: without
    // its reservoir, bits go where the signal needs them, and encoding is faster.
    if (vorbis_encode_setup_managed(info.get(), channels, sampleRate, -1, kbps * 1000L, -1) != 0 ||
        vorbis_encode_ctl(info.get(), OV_ECTL_RATEMANAGE2_SET, nullptr) != 0 ||
        vorbis_encode_setup_init(info.get()) != 0) {
      throw std::runtime_error("Ogg Vorbis has no mode for " + std::to_string(kbps) + " kbps.");
    }
    vorbis_comment_init(comment.get());
    if (vorbis_analysis_init(analysis.get(), info.get()) != 0 ||
        vorbis_block_init(analysis.get(), block.get()) != 0 ||
        ogg_stream_init(stream.get(), serialNumber) != 0) {
      throw std::runtime_error("The Vorbis encoder could not be set up.");
    }
    writeHeaders();
  }

  /// Encodes interleaved frames. Requires: 0 < frames ≤ chunkFrames.
  void write(const float* frames, int count) {
    float** planes = vorbis_analysis_buffer(analysis.get(), count);
    deinterleave(frames, count, planes[0], planes[1]);
    advance(count);
  }

  /// Encodes what the encoder still holds and ends the stream. Nothing may be written afterwards.
  void finish() { advance(0); }

 private:
  void writeHeaders() {
    ogg_packet packets[3];
    if (vorbis_analysis_headerout(analysis.get(), comment.get(), &packets[0], &packets[1], &packets[2]) != 0)
      throw std::runtime_error("The Vorbis encoder could not be set up.");
    for (ogg_packet& packet : packets)
      ogg_stream_packetin(stream.get(), &packet);
    // Audio has to begin on a page of its own.
    ogg_page page;
    while (ogg_stream_flush(stream.get(), &page) != 0)
      writePage(page);
  }

  /// Hands over `count` new frames, 0 for the end, and writes every page that is complete.
  void advance(int count) {
    vorbis_analysis_wrote(analysis.get(), count);
    ogg_packet packet;
    ogg_page page;
    while (vorbis_analysis_blockout(analysis.get(), block.get()) == 1) {
      if (vorbis_analysis(block.get(), &packet) != 0) throw std::runtime_error("The Vorbis encoder failed.");
      ogg_stream_packetin(stream.get(), &packet);
      while (ogg_stream_pageout(stream.get(), &page) != 0)
        writePage(page);
    }
  }

  void writePage(const ogg_page& page) {
    output.append(page.header, static_cast<std::size_t>(page.header_len));
    output.append(page.body, static_cast<std::size_t>(page.body_len));
  }

  OutputPart& output;
  Owned<vorbis_info, vorbis_info_clear> info;
  Owned<vorbis_comment, vorbis_comment_clear> comment;
  Owned<vorbis_dsp_state, vorbis_dsp_clear> analysis;
  Owned<vorbis_block, vorbis_block_clear> block;
  Owned<ogg_stream_state, ogg_stream_clear> stream;
};

}  // namespace

void encode(const std::filesystem::path& input, const std::filesystem::path& output, int kbps) {
  FileHandle source = FileHandle::openForReading(input);
  OutputFile target(output);
  OutputPart pages(target, 0);
  Encoder encoder(kbps, pages);
  std::vector<float> frames(std::size_t{chunkFrames} * channels);
  while (const std::size_t bytes = source.read(frames.data(), chunkFrames * frameBytes)) {
    if (bytes % frameBytes != 0)
      throw std::runtime_error(quotedName(input) + " does not hold a whole number of frames.");
    encoder.write(frames.data(), static_cast<int>(bytes / frameBytes));
  }
  encoder.finish();
  pages.finish();
  target.finish();
}

}  // namespace zarnet
