#include "app/style/Drawing.h"

namespace zarnet {

void drawBox(QPainter& painter, const QRectF& box, double radius, const QColor& fill, const QColor& edge,
             double edgeWidth) {
  const double inset = edgeWidth / 2;
  painter.setPen(edgeWidth > 0 ? QPen(edge, edgeWidth) : QPen(Qt::NoPen));
  painter.setBrush(fill);
  painter.drawRoundedRect(box.adjusted(inset, inset, -inset, -inset), radius - inset, radius - inset);
}

QColor mixed(const QColor& from, const QColor& to, double amount) {
  const auto part = static_cast<float>(amount);
  return QColor::fromRgbF(from.redF() + (to.redF() - from.redF()) * part,
                          from.greenF() + (to.greenF() - from.greenF()) * part,
                          from.blueF() + (to.blueF() - from.blueF()) * part, from.alphaF());
}

}  // namespace zarnet
