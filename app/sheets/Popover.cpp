#include "app/sheets/Popover.h"

#include "app/style/Drawing.h"
#include "app/widgets/FocusRing.h"
#include "desktop/Palette.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QVBoxLayout>
#include <algorithm>

namespace zarnet {

namespace {
constexpr double cornerRadius = 12;
constexpr int distance = 8;
}  // namespace

Popover::Popover(QWidget* window, const QString& name) : QWidget(window) {
  setAccessibleName(name);
  hide();
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSizeConstraint(QLayout::SetFixedSize);
  connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, const QWidget* now) {
    if (isVisible() && now != nullptr && !isAncestorOf(now)) hide();
  });
}

void Popover::setContent(QWidget* content) {
  layout()->addWidget(content);
  new FocusRing(this);
}

void Popover::openUnder(QWidget* control) {
  anchor = control;
  adjustSize();
  const QSize room = parentWidget()->size();
  QPoint place = anchor->mapTo(parentWidget(), QPoint(0, anchor->height() + distance));
  if (place.y() + height() > room.height())
    place = anchor->mapTo(parentWidget(), QPoint(0, -distance - height()));
  place.setX(std::clamp(place.x(), 0, std::max(0, room.width() - width())));
  place.setY(std::max(place.y(), 0));
  move(place);
  raise();
  show();
  qApp->installEventFilter(this);
  focusNextPrevChild(true);
}

void Popover::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const Tokens colour = tokens(palette());
  drawBox(painter, rect(), cornerRadius, colour.panel, mixed(colour.panel, colour.text, 0.14), 1);
}

void Popover::hideEvent(QHideEvent*) {
  qApp->removeEventFilter(this);
  if (anchor != nullptr && isAncestorOf(window()->focusWidget())) anchor->setFocus(Qt::OtherFocusReason);
  Q_EMIT closed();
}

void Popover::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) hide();
}

bool Popover::event(QEvent* event) {
  // Its controls come before the shortcuts of the screen, which are plain keys.
  if (event->type() == QEvent::ShortcutOverride &&
      static_cast<QKeyEvent*>(event)->modifiers() == Qt::NoModifier) {
    event->accept();
    return true;
  }
  return QWidget::event(event);
}

bool Popover::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::MouseButtonPress) return false;
  const auto* clicked = qobject_cast<QWidget*>(watched);
  if (clicked == nullptr || clicked->window() != window() || clicked == this || isAncestorOf(clicked))
    return false;
  hide();
  return true;  // or the button that opened it would open it again at once
}

bool Popover::focusNextPrevChild(bool next) {
  QWidget* const from = focusWidget() != nullptr ? focusWidget() : this;
  const auto after = [next](const QWidget* widget) {
    return next ? widget->nextInFocusChain() : widget->previousInFocusChain();
  };
  for (QWidget* widget = after(from); widget != from; widget = after(widget)) {
    if (!isAncestorOf(widget) || !(widget->focusPolicy() & Qt::TabFocus) || !widget->isEnabled()) continue;
    widget->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    break;
  }
  return true;
}

}  // namespace zarnet
