#pragma once

#include "results/ResultsError.h"

#include <QString>
#include <vector>

namespace zarnet {

// The geometry of the results image in numbers, apart from the drawing. Coordinates are pixels from the top
// left corner, y downwards.

/// One track's card.
struct ResultsRow {
  double y;
  double height;
};

struct ResultsLayout {
  std::vector<ResultsRow> rows;  ///< one for each track
  double height;                 ///< of the whole image, not cut to whole pixels

  int pixelHeight() const { return static_cast<int>(height); }
};

/// The first height that is refused.
constexpr double tooHigh = 30000;
/// Width of the box that a track's title is wrapped in.
constexpr double titleWidth = 510;

/// "This comparison is too large to save as one image."
ResultsError tooLarge();

/// Stacks the rows below the header, each as high as its title needs. `titleHeights` are those of the wrapped
/// titles; at least one. Raises `tooLarge` when the image would be `tooHigh` or more.
ResultsLayout resultsLayout(const std::vector<double>& titleHeights);

/// How many of `total` are `count`, as whole percent cut towards zero: "33%". Computed as
/// count / total × 100 in doubles, so that 29 of 100 read "28%". Requires: total ≥ 1.
QString shareText(int count, int total);

}  // namespace zarnet
