#include "results/PNG.h"

#include <QtEndian>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include <zlib.h>

namespace zarnet {

namespace {

/// Measured on 200 rows: 0.24 s and 3.2 MB. Level 6 takes twice as long for 2.7 MB, level 1 saves no time.
constexpr int compressionLevel = 3;
constexpr std::size_t dataChunk = std::size_t{1} << 18;
constexpr Bytef unfiltered = 0;

std::string bigEndian(std::uint32_t number) {
  std::string bytes(sizeof number, '\0');
  qToBigEndian(number, bytes.data());
  return bytes;
}

void append(QByteArray& file, std::string_view bytes) {
  file.append(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

void appendChunk(QByteArray& file, std::string_view type, std::string_view content) {
  append(file, bigEndian(static_cast<std::uint32_t>(content.size())));
  const qsizetype covered = file.size();
  append(file, type);
  append(file, content);
  const auto* first = reinterpret_cast<const Bytef*>(file.constData() + covered);
  const uLong checksum = crc32_z(0, first, static_cast<std::size_t>(file.size() - covered));
  append(file, bigEndian(static_cast<std::uint32_t>(checksum)));
}

/// Compresses what it is given into the image data chunks of a file.
class ImageData {
 public:
  explicit ImageData(QByteArray& target) : file(target), output(dataChunk) {
    if (deflateInit2(&stream, compressionLevel, Z_DEFLATED, MAX_WBITS, MAX_MEM_LEVEL, Z_DEFAULT_STRATEGY) !=
        Z_OK) {
      throw std::bad_alloc();
    }
    emptyOutput();
  }
  ~ImageData() { deflateEnd(&stream); }
  ImageData(const ImageData&) = delete;
  ImageData& operator=(const ImageData&) = delete;

  void append(const Bytef* bytes, std::size_t count) {
    stream.next_in = const_cast<Bytef*>(bytes);
    stream.avail_in = static_cast<uInt>(count);
    while (stream.avail_in > 0) {
      deflate(&stream, Z_NO_FLUSH);
      if (stream.avail_out == 0) writeChunk();
    }
  }

  void finish() {
    while (deflate(&stream, Z_FINISH) != Z_STREAM_END)
      writeChunk();
    writeChunk();
  }

 private:
  void emptyOutput() {
    stream.next_out = output.data();
    stream.avail_out = static_cast<uInt>(output.size());
  }

  void writeChunk() {
    appendChunk(file, "IDAT",
                {reinterpret_cast<const char*>(output.data()), output.size() - stream.avail_out});
    emptyOutput();
  }

  QByteArray& file;
  z_stream stream = {};
  std::vector<Bytef> output;
};

}  // namespace

QByteArray encodedPNG(const QImage& image) {
  using namespace std::string_view_literals;
  QByteArray file;
  append(file, "\x89PNG\r\n\x1a\n"sv);
  constexpr std::string_view eightBitRGBANotInterlaced = "\x08\x06\0\0\0"sv;
  appendChunk(file, "IHDR",
              bigEndian(static_cast<std::uint32_t>(image.width())) +
                  bigEndian(static_cast<std::uint32_t>(image.height())) +
                  std::string(eightBitRGBANotInterlaced));
  ImageData data(file);
  const std::size_t rowBytes = static_cast<std::size_t>(image.width()) * 4;
  for (int y = 0; y < image.height(); ++y) {
    data.append(&unfiltered, 1);
    data.append(image.constScanLine(y), rowBytes);
  }
  data.finish();
  appendChunk(file, "IEND", {});
  return file;
}

}  // namespace zarnet
