#include "results/PNG.h"

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>

#include <png.h>

namespace zarnet {

QByteArray encodedPNG(const QImage& image) {
  png_image description{};
  description.version = PNG_IMAGE_VERSION;
  description.width = static_cast<png_uint_32>(image.width());
  description.height = static_cast<png_uint_32>(image.height());
  description.format = PNG_FORMAT_RGBA;
  // No filters and a quick compression: large even areas gain nothing from more.
  description.flags = PNG_IMAGE_FLAG_FAST;

  char* bytes = nullptr;
  std::size_t size = 0;
  std::FILE* const file = open_memstream(&bytes, &size);
  if (file == nullptr) throw std::bad_alloc();
  const int written = png_image_write_to_stdio(&description, file, 0, image.constBits(),
                                               static_cast<png_int_32>(image.bytesPerLine()), nullptr);
  const bool complete = std::fclose(file) == 0 && written != 0;
  const std::unique_ptr<char, decltype(&std::free)> owner(bytes, &std::free);
  if (!complete) throw std::bad_alloc();
  return {bytes, static_cast<qsizetype>(size)};
}

}  // namespace zarnet
