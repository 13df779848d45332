#pragma once

#include <QByteArray>
#include <QImage>
#include <cstdint>

namespace zarnet {

/// Decodes a PNG picture, with the colour space that it states. Null when it is damaged, ends early or has
/// more than `mostPixels` pixels. Nothing is printed, where Qt's own reader lets libpng say what is wrong on
/// standard error. Any thread.
QImage decodedPNG(const QByteArray& file, std::int64_t mostPixels);

}  // namespace zarnet
