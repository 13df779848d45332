#pragma once

#include <QColor>
#include <QPainter>
#include <QRectF>

namespace zarnet {

/// The corner-rounded box of a control: filled, with an edge of `edgeWidth` inside `box`.
void drawBox(QPainter& painter, const QRectF& box, double radius, const QColor& fill, const QColor& edge,
             double edgeWidth);

/// A colour moved towards another by `amount`, 0 to 1; the opacity stays that of `from`.
QColor mixed(const QColor& from, const QColor& to, double amount);

}  // namespace zarnet
