#pragma once

#include <QColor>
#include <QPainter>
#include <QRectF>
#include <functional>

class QWidget;

namespace zarnet {

/// The corner-rounded box of a control: filled, with an edge of `edgeWidth` inside `box`.
void drawBox(QPainter& painter, const QRectF& box, double radius, const QColor& fill, const QColor& edge,
             double edgeWidth);

/// Draws a control with `draw`, whose painter is antialiased. One that is disabled is drawn as a group with
/// 0.7 of its opacity, 0.6 in dark: stroke by stroke, its label would fade into its fill.
void drawControl(QWidget& control, const std::function<void(QPainter&)>& draw);

/// A colour moved towards another by `amount`, 0 to 1; the opacity stays that of `from`.
QColor mixed(const QColor& from, const QColor& to, double amount);

}  // namespace zarnet
