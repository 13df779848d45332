#include "desktop/Thumbnail.h"
#include "tests/support/ScratchFolder.h"

#include <QBuffer>
#include <QPainter>
#include <string>

#include <gtest/gtest.h>

namespace zarnet {
namespace {

using test::bigEndian;
using test::littleEndian;

/// Red in the upper left quarter, blue elsewhere.
QImage marked(int width, int height) {
  QImage image(width, height, QImage::Format_RGB32);
  image.fill(Qt::blue);
  QPainter(&image).fillRect(0, 0, width / 2, height / 2, Qt::red);
  return image;
}

std::string encoded(const QImage& image, const char* format) {
  QBuffer buffer;
  buffer.open(QIODevice::WriteOnly);
  EXPECT_TRUE(image.save(&buffer, format));
  return buffer.data().toStdString();
}

/// A JPEG file with an Exif segment that states the orientation and may hold further bytes.
std::string orientedJPEG(const QImage& image, int orientation, const std::string& further = "") {
  const std::string exif = std::string("Exif\0\0", 6) + "MM" + bigEndian(42, 2) + bigEndian(8, 4) +
                           bigEndian(1, 2) + bigEndian(0x0112, 2) + bigEndian(3, 2) + bigEndian(1, 4) +
                           bigEndian(orientation, 2) + bigEndian(0, 2) + bigEndian(0, 4) + further;
  std::string file = encoded(image, "jpeg");
  return file.insert(2, "\xFF\xE1" + bigEndian(exif.size() + 2, 2) + exif);
}

/// A GIF file of these dimensions with a single pixel in it.
std::string tinyGIF(int width, int height) {
  return "GIF89a" + littleEndian(width, 2) + littleEndian(height, 2) +
         std::string("\x80\0\0\0\0\0\xFF\xFF\xFF,\0\0\0\0\1\0\1\0\0\2\2D\1\0;", 25);
}

TEST(Thumbnail, TurnsThePictureAsItStates) {
  const auto made = thumbnail(orientedJPEG(marked(1000, 500), 6), 256);
  ASSERT_TRUE(made);
  EXPECT_EQ(made->size(), QSize(128, 256));
  EXPECT_GT(made->pixelColor(96, 64).red(), 180) << "the red quarter comes to lie at the upper right";
  for (const QPoint point : {QPoint(32, 64), QPoint(32, 192), QPoint(96, 192)})
    EXPECT_GT(made->pixelColor(point).blue(), 180);
}

TEST(Thumbnail, IsNotMadeFromAPictureThatEndsEarly) {
  const QImage image = marked(400, 400);
  const std::string inside = encoded(marked(40, 40), "jpeg");
  for (const std::string& whole :
       {encoded(image, "jpeg"), orientedJPEG(image, 1, inside), encoded(image, "png"), tinyGIF(1, 1)}) {
    EXPECT_TRUE(thumbnail(whole + std::string(10, '\0'), 256)) << "padded";
    for (std::size_t parts = 0; parts < 20; ++parts)
      EXPECT_FALSE(thumbnail(std::string_view(whole).substr(0, whole.size() * parts / 20), 256)) << parts;
  }
}

TEST(Thumbnail, DecodesUpTo64MegapixelsAndNoMore) {
  EXPECT_TRUE(thumbnail(encoded(QImage(8000, 8000, QImage::Format_Mono), "png"), 256));
  EXPECT_FALSE(thumbnail(encoded(QImage(8001, 8000, QImage::Format_Mono), "png"), 256));
  // Files of a few bytes that announce a great deal.
  EXPECT_FALSE(thumbnail(tinyGIF(20'000, 20'000), 256));
  std::string manyScans = encoded(marked(16, 16), "jpeg");
  const std::size_t scan = manyScans.find("\xFF\xDA");
  const std::string oneScan = manyScans.substr(scan, manyScans.size() - 2 - scan);
  for (int i = 0; i < 5000; ++i)
    manyScans.insert(scan, oneScan);
  EXPECT_FALSE(thumbnail(manyScans, 256));
}

}  // namespace
}  // namespace zarnet
