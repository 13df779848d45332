#include "app/sheets/Popover.h"

#include "app/style/Drawing.h"
#include "app/style/Translucency.h"
#include "app/widgets/FocusRing.h"
#include "desktop/Palette.h"

#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QVBoxLayout>
#include <algorithm>

namespace zarnet {

namespace {
constexpr double cornerRadius = 12;
constexpr int distance = 8;
}  // namespace

Popover::Popover(QWidget* parent)
    : QWidget(parent, Qt::Popup | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint) {
  // The click that closes it must not reach the button that opened it, or it would open again at once.
  setAttribute(Qt::WA_NoMouseReplay);
  if (canBeTranslucent()) setAttribute(Qt::WA_TranslucentBackground);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSizeConstraint(QLayout::SetFixedSize);
}

void Popover::setContent(QWidget* content) {
  layout()->addWidget(content);
  new FocusRing(this);
}

void Popover::openUnder(const QWidget* anchor) {
  adjustSize();
  const QRect room = anchor->screen()->availableGeometry();
  const QPoint below = anchor->mapToGlobal(QPoint(0, anchor->height() + distance));
  const QPoint above = anchor->mapToGlobal(QPoint(0, -distance - height()));
  QPoint place = below.y() + height() > room.bottom() ? above : below;
  place.setX(std::clamp(place.x(), room.left(), std::max(room.left(), room.right() - width())));
  move(place);
  show();
  if (QWidget* first = nextInFocusChain(); first != nullptr && isAncestorOf(first))
    first->setFocus(Qt::PopupFocusReason);
}

void Popover::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const Tokens colour = tokens(palette());
  const bool rounded = testAttribute(Qt::WA_TranslucentBackground);
  drawBox(painter, rect(), rounded ? cornerRadius : 0.5, colour.panel, mixed(colour.panel, colour.text, 0.14),
          1);
}

void Popover::hideEvent(QHideEvent*) {
  Q_EMIT closed();
}

void Popover::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) {
    hide();
    return;
  }
  QWidget::keyPressEvent(event);
}

}  // namespace zarnet
