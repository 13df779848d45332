#include "app/widgets/Slider.h"

#include "app/style/Drawing.h"
#include "desktop/Palette.h"

#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace zarnet {

namespace {
constexpr double knob = 16;
constexpr double track = 4;

int counted(double amount) {
  return static_cast<int>(std::lround(amount * Slider::resolution));
}

}  // namespace

Slider::Slider(double step, QWidget* parent) : QSlider(Qt::Horizontal, parent) {
  setSingleStep(counted(step));
  setPageStep(4 * singleStep());
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_Hover);
  connect(this, &QSlider::valueChanged, this, [this](int value) { Q_EMIT moved(value / resolution); });
}

void Slider::display(double amount, double most) {
  if (isSliderDown()) return;
  const QSignalBlocker quiet(this);
  setRange(0, counted(most));  // may push the old value into the new range, which is no wish of the user's
  setValue(counted(amount));
}

int Slider::valueAt(double x) const {
  const double part = std::clamp((x - knob / 2) / (width() - knob), 0.0, 1.0);
  return minimum() + static_cast<int>(std::lround(part * (maximum() - minimum())));
}

void Slider::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const Tokens colour = tokens(palette());
  const double part =
      maximum() > minimum() ? static_cast<double>(value() - minimum()) / (maximum() - minimum()) : 0;
  const double centre = knob / 2 + part * (width() - knob);
  const double middle = height() / 2.0;
  drawBox(painter, {0, middle - track / 2, static_cast<double>(width()), track}, track / 2,
          colour.sliderTrack, {}, 0);
  drawBox(painter, {0, middle - track / 2, centre, track}, track / 2, colour.accent, {}, 0);
  const QRectF disc(centre - knob / 2, middle - knob / 2, knob, knob);
  const QColor fill = mixed(Qt::white, Qt::black, isSliderDown() ? 0.08 : underMouse() ? 0.04 : 0);
  painter.setPen(QPen(withOpacity(Qt::black, 0.16), 1));
  painter.setBrush(fill);
  painter.drawEllipse(disc.adjusted(0.5, 0.5, -0.5, -0.5));
}

void Slider::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return event->ignore();
  setSliderDown(true);
  setValue(valueAt(event->position().x()));
}

void Slider::mouseMoveEvent(QMouseEvent* event) {
  if (isSliderDown()) setValue(valueAt(event->position().x()));
}

void Slider::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) setSliderDown(false);
}

void Slider::wheelEvent(QWheelEvent* event) {
  event->ignore();
}

}  // namespace zarnet
