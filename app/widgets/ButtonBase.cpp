#include "app/widgets/ButtonBase.h"

#include "app/style/Drawing.h"
#include "app/style/Motion.h"

#include <QKeyEvent>

namespace zarnet {

namespace {
constexpr int fillMilliseconds = 120;
constexpr double hoverShift = 0.04;
constexpr double pressedShift = 0.08;
}  // namespace

ButtonBase::ButtonBase(QWidget* parent) : QAbstractButton(parent) {
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_Hover);
  animation.setDuration(fillMilliseconds);
  connect(&animation, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
    shift = value.toDouble();
    update();
  });
  const auto follow = [this] { animateTo(isDown() ? pressedShift : underMouse() ? hoverShift : 0); };
  connect(this, &QAbstractButton::pressed, this, follow);
  connect(this, &QAbstractButton::released, this, follow);
}

void ButtonBase::animateTo(double target) {
  if (!isEnabled()) target = 0;
  animation.stop();
  if (target == shift) return;
  if (!motionAllowed() || !isVisible()) {
    shift = target;
    update();
    return;
  }
  animation.setStartValue(shift);
  animation.setEndValue(target);
  animation.start();
}

QColor ButtonBase::shifted(const QColor& fill) const {
  return mixed(fill, colours().text, shift);
}

void ButtonBase::paintEvent(QPaintEvent*) {
  drawControl(*this, [this](QPainter& painter) { paint(painter); });
}

void ButtonBase::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
    if (!event->isAutoRepeat()) click();
    return;
  }
  QAbstractButton::keyPressEvent(event);
}

bool ButtonBase::event(QEvent* event) {
  switch (event->type()) {
    case QEvent::HoverEnter:
      animateTo(isDown() ? pressedShift : hoverShift);
      break;
    case QEvent::HoverLeave:
    case QEvent::EnabledChange:
      animateTo(0);
      break;
    default:
      break;
  }
  return QAbstractButton::event(event);
}

}  // namespace zarnet
