#pragma once

#include <QColor>
#include <QIcon>
#include <QPainter>
#include <QRectF>
#include <QString>

namespace zarnet {

/// Draws one of the application's symbols ("play.fill", "eye.slash", …) into a square, in one colour, crisp
/// at any scale. A name that does not exist draws nothing.
void drawSymbol(QPainter& painter, const QString& name, const QRectF& square, const QColor& colour);

/// The same as an icon of `points` × `points`, for menus.
QIcon symbolIcon(const QString& name, int points, const QColor& colour);

}  // namespace zarnet
