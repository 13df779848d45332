#pragma once

#include <QImage>
#include <optional>
#include <string_view>

namespace zarnet {

/// Makes a small version of an encoded picture (JPEG, PNG or GIF, WebP where Qt has its plug-in), told by
/// its content. The longer side is at most `longestSide` pixels; a smaller picture is never enlarged. The
/// orientation that the picture states is applied. Of an animation the first frame counts.
///
/// None when the bytes are no such picture, end early or are damaged, or when the picture has more than 64
/// megapixels; those are refused by their header alone. Any thread. Requires: longestSide ≥ 1.
std::optional<QImage> thumbnail(std::string_view encoded, int longestSide);

}  // namespace zarnet
