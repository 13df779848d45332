#include "app/widgets/FocusRing.h"

#include "app/widgets/ButtonBase.h"
#include "app/widgets/Text.h"
#include "desktop/Palette.h"

#include <QApplication>
#include <QEvent>
#include <QPainter>

namespace zarnet {

namespace {

constexpr int gap = 2;
constexpr int stroke = 2;

double cornerRadius(const QWidget* widget) {
  const auto* button = qobject_cast<const ButtonBase*>(widget);
  return button != nullptr ? button->cornerRadius() : 8;
}

}  // namespace

FocusRing::FocusRing(QWidget* content) : QWidget(content) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setFocusPolicy(Qt::NoFocus);
  hide();
  qApp->installEventFilter(this);
}

bool FocusRing::eventFilter(QObject* watched, QEvent* event) {
  auto* widget = qobject_cast<QWidget*>(watched);
  switch (event->type()) {
    case QEvent::KeyPress:
      byKeyboard = true;
      break;
    case QEvent::MouseButtonPress:
      byKeyboard = false;
      follow(nullptr);
      break;
    case QEvent::FocusIn:
      if (widget != nullptr && parentWidget()->isAncestorOf(widget)) {
        follow(byKeyboard && !qobject_cast<Text*>(widget) ? widget : nullptr);
      }
      break;
    case QEvent::FocusOut:
      if (widget == focused) follow(nullptr);
      break;
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::Show:
    case QEvent::Hide:
      if (focused != nullptr && widget != nullptr && widget != this &&
          (widget == focused || widget->isAncestorOf(focused)))
        place();
      break;
    default:
      break;
  }
  return false;
}

void FocusRing::follow(QWidget* widget) {
  focused = widget;
  place();
}

void FocusRing::place() {
  if (focused == nullptr || !focused->isVisibleTo(parentWidget())) return hide();
  const QRect box(focused->mapTo(parentWidget(), QPoint(0, 0)), focused->size());
  const int outside = gap + stroke;
  setGeometry(box.adjusted(-outside, -outside, outside, outside));
  raise();
  show();
  update();
}

void FocusRing::paintEvent(QPaintEvent*) {
  if (focused == nullptr) return;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(tokens(palette()).accent, stroke));
  painter.setBrush(Qt::NoBrush);
  const double radius = cornerRadius(focused) + gap + 1;
  painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), radius, radius);
}

}  // namespace zarnet
