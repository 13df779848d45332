#include "app/widgets/Toggles.h"

#include "app/style/Drawing.h"
#include "app/style/Motion.h"
#include "app/style/Symbol.h"
#include "app/style/Typography.h"

#include <QFontMetricsF>
#include <cmath>

namespace zarnet {

namespace {
constexpr int box = 18;
constexpr int gap = 9;
}  // namespace

CheckBox::CheckBox(const QString& text, QWidget* parent) : ButtonBase(parent) {
  setCheckable(true);
  setText(text);
  setFont(textFont(TextStyle::body));
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize CheckBox::sizeHint() const {
  return {static_cast<int>(std::ceil(box + gap + QFontMetricsF(font()).horizontalAdvance(text()))), 24};
}

void CheckBox::paint(QPainter& painter) {
  const Tokens colour = colours();
  const QRectF square(0, (height() - box) / 2.0, box, box);
  if (isChecked()) {
    drawBox(painter, square, 5, shifted(colour.accent), {}, 0);
    drawSymbol(painter, QStringLiteral("checkmark"), square.adjusted(1.5, 1.5, -1.5, -1.5),
               colour.textOnAccent);
  } else {
    drawBox(painter, square, 5, shifted(colour.controlFill), colour.controlEdge, 1);
  }
  painter.setPen(colour.text);
  painter.setFont(font());
  painter.drawText(QRectF(box + gap, 0, width() - box - gap + 1, height()), Qt::AlignLeft | Qt::AlignVCenter,
                   text());
}

Switch::Switch(QWidget* parent) : ButtonBase(parent) {
  setCheckable(true);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  slide.setDuration(120);
  connect(&slide, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
    knob = value.toDouble();
    update();
  });
}

void Switch::checkStateSet() {
  slide.stop();
  const double goal = isChecked() ? 1 : 0;
  if (!motionAllowed() || !isVisible()) {
    knob = goal;
    update();
    return;
  }
  slide.setStartValue(knob);
  slide.setEndValue(goal);
  slide.start();
}

void Switch::nextCheckState() {
  ButtonBase::nextCheckState();
  checkStateSet();
}

void Switch::paint(QPainter& painter) {
  const Tokens colour = colours();
  const QColor off = mixed(colour.sliderTrack, colour.text, colour.dark ? 0.12 : 0.4);
  drawBox(painter, rect(), cornerRadius(), shifted(mixed(off, colour.accent, knob)), {}, 0);
  const double diameter = height() - 4;
  painter.setBrush(mixed(Qt::white, colour.textOnAccent, knob));  // 3 : 1 on the track, on as off
  painter.drawEllipse(QRectF(2 + knob * (width() - height()), 2, diameter, diameter));
}

}  // namespace zarnet
