#include "app/widgets/SideCard.h"

#include "app/style/Drawing.h"
#include "app/style/Typography.h"

#include <QAccessible>
#include <QFontMetricsF>
#include <cmath>

namespace zarnet {

namespace {

struct Line {
  QString text;
  TextStyle style;
  bool secondary;
};

constexpr int padding = 20;
constexpr int spacing = 10;
constexpr int leastHeight = 142;

double heightOf(TextStyle style) {
  return QFontMetricsF(textFont(style)).height();
}

}  // namespace

void SelectableButton::setSelected(bool selectedNow) {
  if (selected == selectedNow) return;
  selected = selectedNow;
  QAccessible::State changed;
  changed.selected = true;
  QAccessibleStateChangeEvent event(this, changed);
  QAccessible::updateAccessibility(&event);
  update();
}

SideCard::SideCard(const QString& ofSide, QWidget* parent) : SelectableButton(parent), side(ofSide) {
  setAccessibleName(QStringLiteral("Listen to ") + side);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Minimum);  // two in a row are equally high
}

void SideCard::setIdentity(const QString& identityNow, const QString& formatNow) {
  if (identity == identityNow && format == formatNow) return;
  identity = identityNow;
  format = formatNow;
  setAccessibleDescription(identity.isEmpty() ? QString() : identity + QStringLiteral(", ") + format);
  updateGeometry();
  update();
}

void SideCard::setGlass(bool glassNow) {
  if (glass == glassNow) return;
  glass = glassNow;
  update();
}

QSize SideCard::sizeHint() const {
  double height = 2 * padding + heightOf(TextStyle::sideLetter) + spacing + heightOf(TextStyle::callout);
  if (!identity.isEmpty())
    height += 2 * spacing + heightOf(TextStyle::headline) + heightOf(TextStyle::caption);
  return {280, std::max(leastHeight, static_cast<int>(std::ceil(height)))};
}

void SideCard::paint(QPainter& painter) {
  const Tokens colour = colours();
  const QColor plain = glass ? withOpacity(colour.panel, 0.12) : colour.panel;
  const QColor fill = isSelected() ? withOpacity(colour.accent, 0.10 + pointerShift()) : shifted(plain);
  drawBox(painter, rect(), cornerRadius(), fill, isSelected() ? colour.accent : colour.cardEdge,
          isSelected() ? 2 : 1);

  std::vector<Line> lines = {{side, TextStyle::sideLetter, false}};
  if (!identity.isEmpty()) {
    lines.push_back({identity, TextStyle::headline, false});
    lines.push_back({format, TextStyle::caption, true});
  }
  lines.push_back(
      {isSelected() ? QStringLiteral("Selected") : QStringLiteral("Listen"), TextStyle::callout, true});

  double total = spacing * static_cast<double>(lines.size() - 1);
  for (const Line& line : lines)
    total += heightOf(line.style);
  double y = (height() - total) / 2;
  for (const Line& line : lines) {
    const QFont face = textFont(line.style);
    const QRectF room(padding, y, width() - 2 * padding, heightOf(line.style));
    painter.setFont(face);
    painter.setPen(line.secondary ? colour.secondary : colour.text);
    painter.drawText(room, Qt::AlignCenter | Qt::TextSingleLine,
                     QFontMetricsF(face).elidedText(line.text, Qt::ElideRight, room.width()));
    y += room.height() + spacing;
  }
}

AnswerButton::AnswerButton(const QString& label, QWidget* parent) : SelectableButton(parent) {
  setText(label);
  setFont(textFont(TextStyle::answer));
  setAccessibleName(QStringLiteral("Preference: ") + label);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize AnswerButton::sizeHint() const {
  const QFontMetricsF metrics(font());
  return {static_cast<int>(std::ceil(metrics.horizontalAdvance(text()))) + 32,
          static_cast<int>(std::ceil(metrics.height())) + 26};
}

void AnswerButton::paint(QPainter& painter) {
  const Tokens colour = colours();
  const QColor fill = isSelected() ? withOpacity(colour.accent, 0.18 + pointerShift())
                                   : withOpacity(colour.text, 0.05 + pointerShift());
  drawBox(painter, rect(), cornerRadius(), fill, isSelected() ? colour.accent : colour.cardEdge,
          isSelected() ? 2 : 1);
  painter.setPen(colour.text);
  painter.setFont(font());
  painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, text());
}

}  // namespace zarnet
