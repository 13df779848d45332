#include "app/WindowFit.h"

#include <algorithm>

namespace zarnet {

ScreenRect fittedMainWindowFrame(const ScreenRect& current, const ScreenRect& visible, double desiredHeight,
                                 bool centered) {
  const double height = std::min(visible.height, desiredHeight);
  const double width = current.width;
  if (centered) {
    return {visible.x + visible.width / 2 - width / 2, visible.y + visible.height / 2 - height / 2, width,
            height};
  }
  const double y = std::min(visible.top(), current.top()) - height;
  return {current.x, std::max(y, visible.y), width, height};
}

ScreenRect upwards(const QRectF& toolkit, double screenBottom) {
  return {toolkit.x(), screenBottom - toolkit.bottom(), toolkit.width(), toolkit.height()};
}

QRectF downwards(const ScreenRect& rect, double screenBottom) {
  return {rect.x, screenBottom - rect.top(), rect.width, rect.height};
}

}  // namespace zarnet
