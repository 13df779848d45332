#include "app/widgets/RoundedPanel.h"

#include "app/style/Drawing.h"
#include "desktop/Palette.h"

#include <QEvent>
#include <QPainter>

namespace zarnet {

GlassSurface::GlassSurface(QWidget* parent, double radius) : QWidget(parent), cornerRadius(radius) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setFocusPolicy(Qt::NoFocus);
  parent->installEventFilter(this);
  fill();
  lower();
}

void GlassSurface::fill() {
  setGeometry(parentWidget()->rect().adjusted(1, 1, -1, -2));  // inside the panel's edge, which stays seen
}

void GlassSurface::setEnabled(bool enabled) {
  setVisible(enabled);
}

void GlassSurface::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const Tokens colour = tokens(palette());
  drawBox(painter, rect(), cornerRadius - 1, withOpacity(colour.panel, colour.dark ? 0.62 : 0.68), {}, 0);
}

bool GlassSurface::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Resize) fill();
  return QWidget::eventFilter(watched, event);
}

RoundedPanel::RoundedPanel(double radius, QWidget* parent)
    : QWidget(parent), cornerRadius(radius), surface(new GlassSurface(this, radius)) {
  surface->setEnabled(false);
}

void RoundedPanel::setGlass(bool glassNow) {
  if (glass == glassNow) return;
  glass = glassNow;
  surface->setEnabled(glass);
  update();
}

void RoundedPanel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const Tokens colour = tokens(palette());
  const QRectF box(rect());
  if (!colour.dark && !glass) {
    drawBox(painter, box.adjusted(0, 1, 0, 0), cornerRadius, withOpacity(Qt::black, 0.06), {}, 0);
  }
  drawBox(painter, box.adjusted(0, 0, 0, -1), cornerRadius,
          glass ? withOpacity(colour.panel, 0.12) : colour.panel, colour.hairline, 1);
}

Divider::Divider(QWidget* parent) : QWidget(parent) {
  setFixedHeight(1);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void Divider::paintEvent(QPaintEvent*) {
  QPainter(this).fillRect(rect(), tokens(palette()).hairline);
}

}  // namespace zarnet
