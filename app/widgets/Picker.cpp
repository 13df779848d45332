#include "app/widgets/Picker.h"

#include "app/style/Drawing.h"
#include "app/style/Symbol.h"
#include "app/style/Typography.h"
#include "desktop/Palette.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollArea>

namespace zarnet {

Picker::Picker(QWidget* parent) : QComboBox(parent) {
  setFont(textFont(TextStyle::body));
  setFocusPolicy(Qt::StrongFocus);
  setAttribute(Qt::WA_Hover);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  setMaxVisibleItems(20);
  view()->setFont(font());
  connect(this, &QComboBox::currentTextChanged, this, [this] {
    QAccessibleEvent event(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&event);
  });
  // The list tells assistive technology what is chosen also while it is closed.
  connect(this, &QComboBox::currentIndexChanged, this,
          [this](int index) { view()->setCurrentIndex(model()->index(index, modelColumn())); });
  // Once the mouse or a key has selected an entry, it is the current one, too.
  connect(view()->selectionModel(), &QItemSelectionModel::selectionChanged, this, &Picker::takeSelection,
          Qt::QueuedConnection);
}

void Picker::takeSelection() {
  const QModelIndexList selected = view()->selectionModel()->selectedIndexes();
  if (selected.size() != 1 || selected.front() == view()->currentIndex()) return;
  setCurrentIndex(selected.front().row());
  hidePopup();
  Q_EMIT activated(currentIndex());
  Q_EMIT textActivated(currentText());
}

void Picker::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const Tokens colour = tokens(palette());
  const QColor fill = mixed(colour.controlFill, colour.text, underMouse() && isEnabled() ? 0.04 : 0);
  drawBox(painter, rect(), 8, fill, colour.controlEdge, 1);
  painter.setPen(colour.text);
  painter.setFont(font());
  const QRectF room(13, 0, width() - 13 - 32, height());
  painter.drawText(
      room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
      painter.fontMetrics().elidedText(currentText(), Qt::ElideRight, static_cast<int>(room.width())));
  drawSymbol(painter, QStringLiteral("chevron.down"), QRectF(width() - 28, height() / 2.0 - 7, 14, 14),
             colour.secondary);
}

void Picker::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_PageUp || event->key() == Qt::Key_PageDown) return event->ignore();
  // Nothing changes unseen: a picker that is scrolled out of view comes into it and takes the next key.
  QWidget* around = parentWidget();
  while (around != nullptr && qobject_cast<QScrollArea*>(around) == nullptr)
    around = around->parentWidget();
  if (around != nullptr && visibleRegion() != QRegion(rect()))
    return static_cast<QScrollArea*>(around)->ensureWidgetVisible(this);
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) return showPopup();
  QComboBox::keyPressEvent(event);
}

// The wheel scrolls the window; turning it over a picker must not change a setting unseen.
void Picker::wheelEvent(QWheelEvent* event) {
  event->ignore();
}

}  // namespace zarnet
