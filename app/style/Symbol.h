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

/// The same as an icon in the text colour of the application's palette, which it follows.
QIcon symbolIcon(const QString& name);

}  // namespace zarnet
