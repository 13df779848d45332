#include "app/style/Drawing.h"

#include "desktop/Palette.h"

#include <QImage>
#include <QWidget>

namespace zarnet {

void drawBox(QPainter& painter, const QRectF& box, double radius, const QColor& fill, const QColor& edge,
             double edgeWidth) {
  const double inset = edgeWidth / 2;
  painter.setPen(edgeWidth > 0 ? QPen(edge, edgeWidth) : QPen(Qt::NoPen));
  painter.setBrush(fill);
  painter.drawRoundedRect(box.adjusted(inset, inset, -inset, -inset), radius - inset, radius - inset);
}

void drawControl(QWidget& control, const std::function<void(QPainter&)>& draw) {
  QPainter painter(&control);
  painter.setRenderHint(QPainter::Antialiasing);
  if (control.isEnabled()) return draw(painter);
  const double scale = painter.deviceTransform().m11();
  QImage group((QSizeF(control.size()) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
  group.setDevicePixelRatio(scale);
  group.fill(Qt::transparent);
  QPainter inside(&group);
  inside.setRenderHint(QPainter::Antialiasing);
  draw(inside);
  inside.end();
  painter.setOpacity(tokens(control.palette()).dark ? 0.6 : 0.7);
  painter.drawImage(0, 0, group);
}

QColor mixed(const QColor& from, const QColor& to, double amount) {
  const auto part = static_cast<float>(amount);
  return QColor::fromRgbF(from.redF() + (to.redF() - from.redF()) * part,
                          from.greenF() + (to.greenF() - from.greenF()) * part,
                          from.blueF() + (to.blueF() - from.blueF()) * part, from.alphaF());
}

}  // namespace zarnet
