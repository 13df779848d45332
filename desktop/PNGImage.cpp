#include "desktop/PNGImage.h"

#include <QColorSpace>
#include <QtEndian>
#include <memory>

#include <png.h>

namespace zarnet {

namespace {

/// The colour space of a file's profile; libpng's simple reader leaves it out.
QColorSpace statedColorSpace(const QByteArray& file) {
  constexpr qsizetype signatureBytes = 8;
  constexpr qsizetype chunkHeaderBytes = 8;
  constexpr qsizetype checksumBytes = 4;
  // A display's profile has a few kilobytes; a made-up one might grow to any size.
  constexpr qsizetype largestProfile = 64 * 1024;
  for (qsizetype place = signatureBytes; place + chunkHeaderBytes <= file.size();) {
    const QByteArrayView name = QByteArrayView(file).sliced(place + 4, 4);
    const qsizetype size = qFromBigEndian<quint32>(file.constData() + place);
    place += chunkHeaderBytes;
    if (name == "IDAT" || size > file.size() - place) break;
    if (name == "iCCP" && size <= largestProfile) {
      // The profile's own name ends with NUL, and a method of compression follows. Qt wants the size ahead of
      // the data, or zero.
      const QByteArray content = file.mid(place, size);
      const qsizetype nameEnd = content.indexOf('\0');
      return QColorSpace::fromIccProfile(qUncompress(QByteArray(4, '\0') + content.mid(nameEnd + 2)));
    }
    place += size + checksumBytes;
  }
  return {};
}

}  // namespace

QImage decodedPNG(const QByteArray& file, std::int64_t mostPixels) {
  png_image png{};
  const std::unique_ptr<png_image, decltype(&png_image_free)> owner(&png, &png_image_free);
  png.version = PNG_IMAGE_VERSION;
  const auto fileBytes = static_cast<std::size_t>(file.size());
  if (png_image_begin_read_from_memory(&png, file.constData(), fileBytes) == 0) return {};
  if (std::int64_t{png.width} * png.height > mostPixels) return {};
  const bool opaque = (png.format & PNG_FORMAT_FLAG_ALPHA) == 0;
  png.format = PNG_FORMAT_BGRA;
  QImage image(static_cast<int>(png.width), static_cast<int>(png.height),
               opaque ? QImage::Format_RGB32 : QImage::Format_ARGB32);
  if (image.isNull()) return {};
  const auto stride = static_cast<png_int_32>(image.bytesPerLine());
  if (png_image_finish_read(&png, nullptr, image.bits(), stride, nullptr) == 0) return {};
  image.setColorSpace(statedColorSpace(file));
  return image;
}

}  // namespace zarnet
