#include "desktop/Thumbnail.h"

#include "desktop/PNGImage.h"

#include <QBuffer>
#include <QColorSpace>
#include <QImageReader>
#include <QtEndian>
#include <algorithm>
#include <cstdint>

namespace zarnet {

namespace {

/// Decoding takes up to eight bytes for a pixel.
constexpr std::int64_t mostPixels = 30'000'000;
/// Pixels times scans: a progressive JPEG has a dozen scans, and each passes over the whole picture.
constexpr std::int64_t mostScannedPixels = 250'000'000;

/// Listens to what Qt has to say about a picture on the thread where one lives, and keeps it from the
/// terminal.
class Remarks {
 public:
  Remarks() {
    [[maybe_unused]] static const bool listens = [] {
      // Another thread may have a message before the second call.
      nextHandler = qInstallMessageHandler(nullptr);
      qInstallMessageHandler(handle);
      return true;
    }();
    current = this;
  }
  ~Remarks() { current = nullptr; }
  Remarks(const Remarks&) = delete;
  Remarks& operator=(const Remarks&) = delete;

  /// Whether a JPEG file ended in the middle of its picture, the rest of which is grey.
  bool tellOfAnEarlyEnd() const { return earlyEnd; }

 private:
  static void handle(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (current == nullptr) return nextHandler(type, context, message);
    if (message.contains(QLatin1String("premature end of data segment"))) current->earlyEnd = true;
  }

  inline static QtMessageHandler nextHandler = nullptr;
  inline static thread_local Remarks* current = nullptr;
  bool earlyEnd = false;
};

/// How a JPEG file goes on behind its headers.
struct JPEGScans {
  qsizetype count = 0;
  bool hasEnd = false;  ///< the end marker
};

/// Finds the scans of a JPEG file. Stray bytes may stand between its segments; those before the first scan
/// state their size, and one of them may hold a small picture of its own.
JPEGScans scansOf(const QByteArray& file) {
  constexpr QByteArrayView startOfScan = "\xFF\xDA";
  constexpr QByteArrayView endOfImage = "\xFF\xD9";
  for (qsizetype place = 2; (place = file.indexOf('\xFF', place)) >= 0 && place + 4 <= file.size();) {
    const QByteArrayView rest = QByteArrayView(file).sliced(place);
    if (rest.startsWith(startOfScan)) return {rest.count(startOfScan), rest.contains(endOfImage)};
    const bool isMarker = rest[1] != '\xFF' && rest[1] != '\0';
    place += isMarker ? 2 + qFromBigEndian<quint16>(rest.data() + 2) : 1;
  }
  return {};
}

/// Whether a GIF file has its trailer; zeros may follow.
bool isWholeGIF(const QByteArray& file) {
  const auto last = std::find_if(file.crbegin(), file.crend(), [](char byte) { return byte != '\0'; });
  return last != file.crend() && *last == ';';
}

/// Whether a BMP file is as long as it says; some do not say.
bool isWholeBMP(const QByteArray& file) {
  constexpr qsizetype sizeField = 2;
  return file.size() >= sizeField + 4 &&
         qFromLittleEndian<quint32>(file.constData() + sizeField) <= file.size();
}

/// The size of the screen that a GIF file's frames are drawn on; each of them may be smaller.
QSize screenOfGIF(const QByteArray& file) {
  constexpr qsizetype screen = 6;
  if (file.size() < screen + 4) return {};
  return {qFromLittleEndian<quint16>(file.constData() + screen),
          qFromLittleEndian<quint16>(file.constData() + screen + 2)};
}

/// Whether the file is whole and its header says that decoding it takes neither too much memory nor too long.
bool isWorthDecoding(const QByteArray& format, const QByteArray& file, QSize size) {
  const std::int64_t pixels = std::int64_t{size.width()} * size.height();
  if (size.isEmpty() || pixels > mostPixels) return false;
  if (format == "jpeg") return scansOf(file).count * pixels <= mostScannedPixels;
  if (format == "gif") return isWholeGIF(file);
  if (format == "bmp") return isWholeBMP(file);
  return format == "webp";
}

QSize fitted(QSize size, int longestSide) {
  if (std::max(size.width(), size.height()) <= longestSide) return size;
  return size.scaled(longestSide, longestSide, Qt::KeepAspectRatio).expandedTo({1, 1});
}

/// Reads a picture with Qt's readers at the size of its thumbnail; null when that cannot be.
QImage read(QBuffer& buffer, const QByteArray& format, int longestSide) {
  const Remarks remarks;
  QImageReader reader(&buffer, format);
  const QByteArray& file = buffer.data();
  const QSize size = format == "gif" ? screenOfGIF(file) : reader.size();
  if (!isWorthDecoding(format, file, size)) return {};
  reader.setAutoTransform(true);
  reader.setScaledSize(fitted(size, longestSide));
  QImage image = reader.read();
  return remarks.tellOfAnEarlyEnd() && !scansOf(file).hasEnd ? QImage() : image;
}

QImage readPNG(const QByteArray& file, int longestSide) {
  const Remarks remarks;
  QImage image = decodedPNG(file, mostPixels);
  if (image.isNull()) return image;
  // Scaling would convert a copy.
  if (image.hasAlphaChannel()) image.convertTo(QImage::Format_ARGB32_Premultiplied);
  return image.scaled(fitted(image.size(), longestSide), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

}  // namespace

std::optional<QImage> thumbnail(std::string_view encoded, int longestSide) {
  QByteArray file = QByteArray::fromRawData(encoded.data(), static_cast<qsizetype>(encoded.size()));
  QBuffer buffer(&file);
  buffer.open(QIODevice::ReadOnly);
  const QByteArray format = QImageReader::imageFormat(&buffer);
  QImage image = format == "png" ? readPNG(file, longestSide) : read(buffer, format, longestSide);
  if (image.isNull()) return std::nullopt;
  if (image.colorSpace().isValid()) image.convertToColorSpace(QColorSpace::SRgb);
  const bool opaque = !image.hasAlphaChannel();
  return std::move(image).convertToFormat(opaque ? QImage::Format_RGB32
                                                 : QImage::Format_ARGB32_Premultiplied);
}

}  // namespace zarnet
