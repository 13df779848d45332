#include "app/widgets/Artwork.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace zarnet {

namespace {
constexpr int side = 96;
constexpr double cornerRadius = 10;
}  // namespace

Artwork::Artwork(QWidget* parent) : QWidget(parent) {
  setFixedSize(side, side);
  setAccessibleName(QStringLiteral("Album artwork"));
  hide();
}

void Artwork::setImage(const QImage& next) {
  image = next;
  setVisible(!image.isNull());
  update();
}

void Artwork::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
  QPainterPath shape;
  shape.addRoundedRect(rect(), cornerRadius, cornerRadius);
  painter.setClipPath(shape);
  const int shorter = std::min(image.width(), image.height());
  painter.drawImage(
      QRectF(rect()), image,
      QRectF((image.width() - shorter) / 2.0, (image.height() - shorter) / 2.0, shorter, shorter));
}

}  // namespace zarnet
