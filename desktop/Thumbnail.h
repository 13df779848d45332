#pragma once

#include <QImage>
#include <optional>
#include <string_view>

namespace zarnet {

/// Makes a small version of an encoded picture (JPEG, PNG, GIF or BMP, WebP where Qt has its plug-in), told
/// by its content. The longer side is at most `longestSide` pixels; a smaller picture is never enlarged. The
/// orientation that the picture states is applied, and its colours become sRGB. Of an animation the first
/// frame counts.
///
/// None when the bytes are no such picture, end early or are damaged; a JPEG that lacks no more than its end
/// marker is whole. None either, by the header alone, for a picture of more than 30 megapixels, and for a
/// JPEG of more than 250 megapixels over all of its scans: decoding one takes less than 256 MB and about two
/// seconds at most. Nothing is printed. Any thread. Requires: longestSide ≥ 1.
std::optional<QImage> thumbnail(std::string_view encoded, int longestSide);

}  // namespace zarnet
