#include "app/style/Symbol.h"

#include "desktop/Palette.h"

#include <QFile>
#include <QGuiApplication>
#include <QHash>
#include <QIconEngine>
#include <QPixmap>
#include <QSvgRenderer>
#include <memory>
#include <utility>

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

/// Draws the symbol anew each time, as large as it is asked for.
class SymbolEngine : public QIconEngine {
 public:
  explicit SymbolEngine(QString symbol) : name(std::move(symbol)) {}

  void paint(QPainter* painter, const QRect& square, QIcon::Mode, QIcon::State) override {
    drawSymbol(*painter, name, square, tokens(QGuiApplication::palette()).text);
  }
  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap result(size);
    result.fill(Qt::transparent);
    QPainter painter(&result);
    paint(&painter, result.rect(), mode, state);
    return result;
  }
  QIconEngine* clone() const override { return new SymbolEngine(name); }

 private:
  const QString name;
};

}  // namespace

void drawSymbol(QPainter& painter, const QString& name, const QRectF& square, const QColor& colour) {
  const double before = painter.opacity();
  painter.setOpacity(before * static_cast<double>(colour.alphaF()));
  renderer(name, colour).render(&painter, square);
  painter.setOpacity(before);
}

QIcon symbolIcon(const QString& name) {
  return QIcon(new SymbolEngine(name));
}

}  // namespace zarnet
