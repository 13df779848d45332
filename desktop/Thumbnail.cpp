#include "desktop/Thumbnail.h"

#include <QBuffer>
#include <QColorSpace>
#include <QImageReader>
#include <QLoggingCategory>
#include <QtEndian>
#include <algorithm>
#include <cstdint>

namespace zarnet {

namespace {

constexpr std::int64_t mostPixels = 64'000'000;
/// A picture of that size with 16 bits in each of four channels. Qt's own limit for the whole process is
/// less.
constexpr int mostMegabytes = 512;
/// A progressive JPEG has a dozen scans; one with thousands is made to keep the decoder busy.
constexpr qsizetype mostScans = 100;

/// Whether a JPEG file reaches the end of its picture: the decoder fills what is missing with grey and calls
/// that a success.
bool isWholeJPEG(const QByteArray& file) {
  constexpr QByteArrayView startOfScan = "\xFF\xDA";
  constexpr QByteArrayView endOfImage = "\xFF\xD9";
  // Segments before the first scan state their length; one of them may hold a small picture of its own.
  qsizetype position = 2;
  while (position + 4 <= file.size() && file[position] == '\xFF') {
    const QByteArrayView rest = QByteArrayView(file).sliced(position);
    if (rest.startsWith(startOfScan))
      return rest.contains(endOfImage) && rest.count(startOfScan) <= mostScans;
    const bool isFillByte = rest[1] == '\xFF';
    position += isFillByte ? 1 : 2 + qFromBigEndian<quint16>(rest.data() + 2);
  }
  return false;
}

/// Whether a PNG file has its last chunk; a decoder that misses it says so on the terminal.
bool isWholePNG(const QByteArray& file) {
  return file.contains(QByteArrayView("IEND\xAE\x42\x60\x82"));
}

/// Whether a GIF file has its trailer; zeros may follow.
bool isWholeGIF(const QByteArray& file) {
  const auto last = std::find_if(file.crbegin(), file.crend(), [](char byte) { return byte != '\0'; });
  return last != file.crend() && *last == ';';
}

/// The size of the bitmap that decoding would fill; empty when it is not to be decoded.
QSize decodedSize(const QByteArray& format, const QByteArray& file, const QImageReader& reader) {
  if (format == "jpeg") return isWholeJPEG(file) ? reader.size() : QSize();
  if (format == "png") return isWholePNG(file) ? reader.size() : QSize();
  if (format == "webp") return reader.size();
  constexpr qsizetype gifScreen = 6;
  if (format != "gif" || file.size() < gifScreen + 4 || !isWholeGIF(file)) return {};
  // A frame may be smaller than the screen that it is drawn on.
  return {qFromLittleEndian<quint16>(file.constData() + gifScreen),
          qFromLittleEndian<quint16>(file.constData() + gifScreen + 2)};
}

QSize fitted(QSize size, int longestSide) {
  if (std::max(size.width(), size.height()) <= longestSide) return size;
  return size.scaled(longestSide, longestSide, Qt::KeepAspectRatio).expandedTo({1, 1});
}

/// Settings of Qt's readers that hold for the whole process.
void setUpReaders() {
  [[maybe_unused]] static const bool done = [] {
    QImageReader::setAllocationLimit(mostMegabytes);
    // A damaged picture in somebody's tags is no message for the terminal.
    QLoggingCategory::setFilterRules(QStringLiteral("qt.gui.imageio*=false"));
    return true;
  }();
}

}  // namespace

std::optional<QImage> thumbnail(std::string_view encoded, int longestSide) {
  setUpReaders();
  QByteArray file = QByteArray::fromRawData(encoded.data(), static_cast<qsizetype>(encoded.size()));
  QBuffer buffer(&file);
  buffer.open(QIODevice::ReadOnly);
  const QByteArray format = QImageReader::imageFormat(&buffer);
  QImageReader reader(&buffer, format);
  const QSize size = decodedSize(format, file, reader);
  if (size.isEmpty() || std::int64_t{size.width()} * size.height() > mostPixels) return std::nullopt;
  reader.setAutoTransform(true);
  reader.setScaledSize(fitted(size, longestSide));
  QImage image = reader.read();
  if (image.isNull()) return std::nullopt;
  if (image.colorSpace().isValid()) image.convertToColorSpace(QColorSpace::SRgb);
  const bool opaque = !image.hasAlphaChannel();
  return std::move(image).convertToFormat(opaque ? QImage::Format_RGB32
                                                 : QImage::Format_ARGB32_Premultiplied);
}

}  // namespace zarnet
