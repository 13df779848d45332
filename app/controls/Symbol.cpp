#include "app/controls/Symbol.h"

#include <QFile>
#include <QHash>
#include <QPixmap>
#include <QSvgRenderer>
#include <memory>

// A resource of a static library is linked only when somebody asks for it, outside any namespace.
static void useSymbols() {
  Q_INIT_RESOURCE(symbols);
}

namespace zarnet {

namespace {

QSvgRenderer& renderer(const QString& name, const QColor& colour) {
  // Every screen uses the same dozen of symbols in two or three colours; a change of theme adds as many
  // again.
  static QHash<QString, std::shared_ptr<QSvgRenderer>> cache;
  if (cache.isEmpty()) useSymbols();
  const QString tint = colour.name(QColor::HexRgb);
  std::shared_ptr<QSvgRenderer>& entry = cache[name + tint];
  if (!entry) {
    QFile file(QStringLiteral(":/symbols/%1.svg").arg(name));
    QByteArray content = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    content.replace("currentColor", tint.toLatin1());
    entry = std::make_shared<QSvgRenderer>(content);
  }
  return *entry;
}

}  // namespace

void drawSymbol(QPainter& painter, const QString& name, const QRectF& square, const QColor& colour) {
  const double before = painter.opacity();
  painter.setOpacity(before * static_cast<double>(colour.alphaF()));
  renderer(name, colour).render(&painter, square);
  painter.setOpacity(before);
}

QIcon symbolIcon(const QString& name, int points, const QColor& colour) {
  QIcon icon;
  for (const int scale : {1, 2, 3}) {
    QPixmap pixmap(points * scale, points * scale);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    drawSymbol(painter, name, pixmap.rect(), colour);
    painter.end();
    pixmap.setDevicePixelRatio(scale);
    icon.addPixmap(pixmap);
  }
  return icon;
}

}  // namespace zarnet
