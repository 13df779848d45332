#pragma once

#include <QByteArray>
#include <QImage>

namespace zarnet {

/// Encodes a picture as a PNG file of 8-bit RGBA, quickly and with little memory besides the result. Raises
/// std::bad_alloc. Any thread. Requires: Format_RGBA8888, at least one pixel.
QByteArray encodedPNG(const QImage& image);

}  // namespace zarnet
