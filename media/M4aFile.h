#pragma once

#include <filesystem>

struct AVCodecContext;
struct AVFormatContext;
struct AVPacket;
struct AVStream;

namespace zarnet {

/// Writes one stream of AAC packets into an MPEG-4 audio file (brand "M4A "). An edit list records what the
/// encoder put in front of the sound and behind it, so that a decoder delivers neither. Every error is a
/// `PlatformError` that names the file.
class M4aFile {
 public:
  /// Creates the file, replacing what is there, for the packets of an opened encoder.
  M4aFile(const std::filesystem::path& path, const AVCodecContext& encoder);
  ~M4aFile();
  M4aFile(const M4aFile&) = delete;
  M4aFile& operator=(const M4aFile&) = delete;

  /// Appends a packet, with its times in the encoder's time base. The packet is empty afterwards.
  void write(AVPacket& packet);
  /// Writes the tables and closes the file, which is not valid before. Nothing may be written afterwards.
  void finish();

 private:
  void create(const AVCodecContext& encoder);
  void check(int result) const;
  void close() noexcept;

  const std::filesystem::path path;
  AVFormatContext* format = nullptr;
  AVStream* stream = nullptr;
};

}  // namespace zarnet
