#include "app/widgets/Button.h"

#include "app/style/Drawing.h"
#include "app/style/Symbol.h"
#include "app/style/Typography.h"

#include <QFontMetricsF>
#include <cmath>

namespace zarnet {

namespace {
constexpr int symbolGap = 6;

int heightOf(Button::Kind kind) {
  switch (kind) {
    case Button::Kind::standard:
      return 32;
    case Button::Kind::tall:
    case Button::Kind::prominent:
      return 38;
    case Button::Kind::borderless:
      return 28;
  }
  Q_UNREACHABLE();
}

int paddingOf(Button::Kind kind) {
  switch (kind) {
    case Button::Kind::standard:
      return 15;
    case Button::Kind::tall:
      return 18;
    case Button::Kind::prominent:
      return 20;
    case Button::Kind::borderless:
      return 0;
  }
  Q_UNREACHABLE();
}

/// A button's text as it is drawn: "&&" stands for one "&", as in every text of a button.
QString drawn(QString text) {
  return text.replace(QStringLiteral("&&"), QStringLiteral("&"));
}

}  // namespace

Button::Button(Kind ofKind, const QString& text, QWidget* parent) : ButtonBase(parent), kind(ofKind) {
  setText(text);
  setFont(textFont(kind == Kind::prominent    ? TextStyle::prominent
                   : kind == Kind::borderless ? TextStyle::callout
                                              : TextStyle::button));
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void Button::setSymbol(const QString& name, int points) {
  if (symbol == name && symbolPoints == points) return;
  symbol = name;
  symbolPoints = points;
  updateGeometry();
  update();
}

void Button::setAccented(bool accentedNow) {
  if (accented == accentedNow) return;
  accented = accentedNow;
  update();
}

QSize Button::sizeHint() const {
  double width = 2 * paddingOf(kind);
  if (!text().isEmpty()) width += QFontMetricsF(font()).horizontalAdvance(drawn(text()));
  if (!symbol.isEmpty()) width += symbolPoints + (text().isEmpty() ? 0 : symbolGap);
  return {static_cast<int>(std::ceil(width)),
          std::max(heightOf(kind), symbol.isEmpty() ? 0 : symbolPoints + 8)};
}

void Button::paint(QPainter& painter) {
  const Tokens colour = colours();
  QColor ink = colour.text;
  switch (kind) {
    case Kind::standard:
    case Kind::tall:
      drawBox(painter, rect(), cornerRadius(), shifted(colour.controlFill), colour.controlEdge, 1);
      break;
    case Kind::prominent:
      ink = colour.textOnAccent;
      drawBox(painter, rect(), cornerRadius(), shifted(colour.accent), {}, 0);
      break;
    case Kind::borderless: {
      const QColor base = accented ? colour.accent : colour.secondary;
      // There is no fill to shift here, so the ink itself answers the pointer, five times as much.
      ink = mixed(base, colour.text, isDown() ? 0.7 : underMouse() && isEnabled() ? 0.4 : 0);
      break;
    }
  }
  const QFontMetricsF metrics(font());
  const double textWidth = text().isEmpty() ? 0 : metrics.horizontalAdvance(drawn(text()));
  const double symbolWidth = symbol.isEmpty() ? 0 : symbolPoints + (text().isEmpty() ? 0 : symbolGap);
  double x = (width() - textWidth - symbolWidth) / 2;
  if (!symbol.isEmpty()) {
    drawSymbol(painter, symbol, QRectF(x, (height() - symbolPoints) / 2.0, symbolPoints, symbolPoints), ink);
    x += symbolWidth;
  }
  painter.setPen(ink);
  painter.setFont(font());
  painter.drawText(QRectF(x, 0, textWidth + 1, height()),
                   Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, drawn(text()));
}

PlayButton::PlayButton(QWidget* parent) : ButtonBase(parent) {
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  setAccessibleName(QStringLiteral("Play"));
}

void PlayButton::setPlaying(bool playingNow) {
  if (playing == playingNow) return;
  playing = playingNow;
  setAccessibleName(playing ? QStringLiteral("Pause") : QStringLiteral("Play"));
  update();
}

void PlayButton::paint(QPainter& painter) {
  const Tokens colour = colours();
  painter.setPen(Qt::NoPen);
  painter.setBrush(withOpacity(colour.accent, 0.16 + pointerShift()));
  painter.drawEllipse(rect());
  const QRectF square(width() / 2.0 - 10.5, height() / 2.0 - 10.5, 21, 21);
  drawSymbol(painter, playing ? QStringLiteral("pause.fill") : QStringLiteral("play.fill"), square,
             colour.accent);
}

}  // namespace zarnet
