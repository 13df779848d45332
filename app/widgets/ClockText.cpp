#include "app/widgets/ClockText.h"

#include "desktop/Palette.h"

#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace zarnet {

namespace {

double digitCell(const QFontMetricsF& metrics) {
  double widest = 0;
  for (char16_t digit = u'0'; digit <= u'9'; ++digit)
    widest = std::max(widest, metrics.horizontalAdvance(QChar(digit)));
  return widest;
}

/// Calls `place(piece, x, width)` for each digit and for each run between digits; returns the whole width.
template <typename Place>
double walk(const QString& text, const QFontMetricsF& metrics, Place place) {
  const double cell = digitCell(metrics);
  double x = 0;
  for (qsizetype i = 0; i < text.size();) {
    qsizetype end = i + 1;
    const bool digit = text[i] >= u'0' && text[i] <= u'9';
    while (!digit && end < text.size() && !(text[end] >= u'0' && text[end] <= u'9'))
      ++end;
    const QString piece = text.mid(i, end - i);
    const double width = digit ? cell : metrics.horizontalAdvance(piece);
    place(piece, x, width);
    x += width;
    i = end;
  }
  return x;
}

}  // namespace

ClockText::ClockText(TextStyle style, QWidget* parent) : QWidget(parent) {
  setFont(textFont(style));
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void ClockText::setText(const QString& text) {
  if (text == content) return;
  const QSize before = sizeHint();
  content = text;
  setAccessibleName(text);
  if (sizeHint() != before) updateGeometry();
  update();
}

void ClockText::setSecondary(bool secondaryNow) {
  secondary = secondaryNow;
  update();
}

QSize ClockText::sizeHint() const {
  const QFontMetricsF metrics(font());
  const double width = walk(content, metrics, [](const QString&, double, double) {});
  return {static_cast<int>(std::ceil(width)) + 1, static_cast<int>(std::ceil(metrics.height()))};
}

void ClockText::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const Tokens colour = tokens(palette());
  painter.setPen(secondary ? colour.secondary : colour.text);
  walk(content, QFontMetricsF(font()), [&](const QString& piece, double x, double width) {
    painter.drawText(QRectF(x, 0, width, height()), Qt::AlignCenter | Qt::TextSingleLine | Qt::TextDontClip,
                     piece);
  });
}

}  // namespace zarnet
