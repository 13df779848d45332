#pragma once

#include <QRectF>

namespace zarnet {

/// A rectangle on the screen whose origin is its lower left corner: y grows upwards.
struct ScreenRect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  double top() const { return y + height; }
};

/// Where the main window goes when its content wants `desiredHeight` (of the whole frame): as high as that,
/// but never higher than `visible`; in the middle of `visible` when `centered`, else with its top edge where
/// it was, pushed up when its bottom would leave `visible`. The width stays. All in points.
ScreenRect fittedMainWindowFrame(const ScreenRect& current, const ScreenRect& visible, double desiredHeight,
                                 bool centered);

/// The toolkit's rectangles have their origin at the upper left, y growing downwards. Both conversions are
/// the same for a screen whose bottom edge lies at `screenBottom` in the toolkit's coordinates.
ScreenRect upwards(const QRectF& toolkit, double screenBottom);
QRectF downwards(const ScreenRect& rect, double screenBottom);

}  // namespace zarnet
