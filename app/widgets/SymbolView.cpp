#include "app/widgets/SymbolView.h"

#include "app/style/Symbol.h"
#include "desktop/Palette.h"

namespace zarnet {

SymbolView::SymbolView(const QString& name, const QSize& size, Ink inkColour, QWidget* parent)
    : QWidget(parent), symbol(name), ink(inkColour) {
  setFixedSize(size);
}

void SymbolView::setSymbol(const QString& name) {
  if (symbol == name) return;
  symbol = name;
  update();
}

void SymbolView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const Tokens colour = tokens(palette());
  drawSymbol(painter, symbol, QRectF(0, 0, height(), height()),
             ink == Ink::accent ? colour.accent : colour.secondary);
}

}  // namespace zarnet
