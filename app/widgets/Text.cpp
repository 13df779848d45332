#include "app/widgets/Text.h"

#include "app/widgets/Help.h"
#include "desktop/Palette.h"

#include <QClipboard>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace zarnet {

Text::Text(TextStyle style, const QString& text, QWidget* parent) : QWidget(parent) {
  setFont(textFont(style));
  QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
  policy.setHeightForWidth(true);
  setSizePolicy(policy);
  setText(text);
}

void Text::setText(const QString& text) {
  if (text == content) return;
  content = text;
  setAccessibleName(text);
  markAnchor = markCursor = 0;
  rebuild();
  updateGeometry();
}

void Text::setSecondary(bool secondaryNow) {
  secondary = secondaryNow;
  update();
}

void Text::setOverflow(Overflow overflowNow) {
  overflow = overflowNow;
  QSizePolicy policy = sizePolicy();
  policy.setHeightForWidth(overflow == Overflow::wrap);
  setSizePolicy(policy);
  rebuild();
  updateGeometry();
}

void Text::setAlignment(Qt::Alignment alignmentNow) {
  alignment = alignmentNow;
  rebuild();
}

void Text::setSelectable(bool selectableNow) {
  selectable = selectableNow;
  setCursor(selectable ? Qt::IBeamCursor : Qt::ArrowCursor);
  setFocusPolicy(selectable ? Qt::ClickFocus : Qt::NoFocus);
}

double Text::layOut(QTextLayout& target, const QString& shown, double width) const {
  QTextOption option;
  option.setWrapMode(overflow == Overflow::wrap ? QTextOption::WrapAtWordBoundaryOrAnywhere
                                                : QTextOption::NoWrap);
  option.setAlignment(alignment);
  target.setText(shown);
  target.setFont(font());
  target.setTextOption(option);
  target.beginLayout();
  double y = 0;
  for (QTextLine line = target.createLine(); line.isValid(); line = target.createLine()) {
    line.setLineWidth(width);
    line.setPosition({0, y});
    y += line.height();
  }
  target.endLayout();
  return y;
}

void Text::rebuild() {
  // A line feed inside a title would be a control character to the layout; it stands for a new line.
  QString shown = content;
  shown.replace(u'\n', QChar::LineSeparator);
  if (overflow == Overflow::elide) {
    const QString elided = QFontMetricsF(font()).elidedText(shown, Qt::ElideRight, width());
    setHelp(*this, elided == shown ? QString() : content);
    shown = elided;
  }
  layOut(layout, shown, width());
  update();
}

QSize Text::sizeHint() const {
  const QFontMetricsF metrics(font());
  double widest = 0;
  for (const QString& line : content.split(u'\n'))
    widest = std::max(widest, metrics.horizontalAdvance(line));
  const double lines = overflow == Overflow::wrap ? static_cast<double>(content.count(u'\n') + 1) : 1;
  return {static_cast<int>(std::ceil(widest)) + 1, static_cast<int>(std::ceil(metrics.height() * lines))};
}

QSize Text::minimumSizeHint() const {
  const QFontMetricsF metrics(font());
  const int least = static_cast<int>(std::ceil(metrics.averageCharWidth() * 8));
  return {std::min(sizeHint().width(), least), static_cast<int>(std::ceil(metrics.height()))};
}

int Text::heightForWidth(int width) const {
  QTextLayout probe;
  QString shown = content;
  shown.replace(u'\n', QChar::LineSeparator);
  const double least = QFontMetricsF(font()).height();
  return static_cast<int>(std::ceil(std::max(least, layOut(probe, shown, width))));
}

void Text::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const Tokens colour = tokens(palette());
  painter.setPen(secondary ? colour.secondary : colour.text);
  QList<QTextLayout::FormatRange> marks;
  if (markAnchor != markCursor) {
    QTextLayout::FormatRange range;
    range.start = std::min(markAnchor, markCursor);
    range.length = std::abs(markAnchor - markCursor);
    range.format.setBackground(withOpacity(colour.accent, 0.28));
    marks.append(range);
  }
  layout.draw(&painter, {0, top()}, marks);
}

double Text::top() const {
  return std::max(0.0, std::floor((height() - layout.boundingRect().height()) / 2));
}

void Text::resizeEvent(QResizeEvent*) {
  rebuild();
}

int Text::cursorAt(const QPointF& point) const {
  const double y = point.y() - top();
  for (int i = 0; i < layout.lineCount(); ++i) {
    const QTextLine line = layout.lineAt(i);
    if (y < line.y() + line.height() || i + 1 == layout.lineCount()) return line.xToCursor(point.x());
  }
  return 0;
}

void Text::mark(int anchor, int cursor) {
  markAnchor = anchor;
  markCursor = cursor;
  update();
}

void Text::mousePressEvent(QMouseEvent* event) {
  if (!selectable || event->button() != Qt::LeftButton) return event->ignore();
  const int cursor = cursorAt(event->position());
  mark(cursor, cursor);
}

void Text::mouseMoveEvent(QMouseEvent* event) {
  if (!selectable || !(event->buttons() & Qt::LeftButton)) return event->ignore();
  mark(markAnchor, cursorAt(event->position()));
}

void Text::mouseDoubleClickEvent(QMouseEvent* event) {
  if (!selectable) return event->ignore();
  const int cursor = cursorAt(event->position());
  mark(layout.previousCursorPosition(std::min(cursor + 1, static_cast<int>(layout.text().size())),
                                     QTextLayout::SkipWords),
       layout.nextCursorPosition(cursor, QTextLayout::SkipWords));
}

void Text::keyPressEvent(QKeyEvent* event) {
  if (selectable && event->matches(QKeySequence::Copy)) return copy();
  if (selectable && event->matches(QKeySequence::SelectAll)) return selectAll();
  QWidget::keyPressEvent(event);
}

void Text::focusOutEvent(QFocusEvent* event) {
  // Opening a menu must not lose the mark, or "Copy" would find nothing to copy.
  if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::MenuBarFocusReason) mark(0, 0);
}

void Text::copy() {
  if (markAnchor == markCursor) return;
  const bool whole = std::abs(markAnchor - markCursor) == layout.text().size();
  QString marked =
      whole ? content
            : layout.text().mid(std::min(markAnchor, markCursor), std::abs(markAnchor - markCursor));
  QGuiApplication::clipboard()->setText(marked.replace(QChar::LineSeparator, u'\n'));
}

void Text::selectAll() {
  if (selectable) mark(0, static_cast<int>(layout.text().size()));
}

}  // namespace zarnet
