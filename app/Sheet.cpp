#include "app/Sheet.h"

#include "app/controls/Button.h"
#include "app/controls/FocusRing.h"
#include "app/controls/Spinner.h"
#include "app/controls/Text.h"
#include "desktop/Palette.h"

#include <QAccessible>
#include <QCloseEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>

namespace zarnet {

Sheet::Sheet(QWidget* parent, int width)
    : QDialog(parent, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint),
      fixedWidth(width) {
  setWindowModality(Qt::WindowModal);
  setWindowTitle(QStringLiteral("Zarnet"));
}

void Sheet::fit() {
  setFixedSize(fixedWidth, layout()->totalHeightForWidth(fixedWidth));
}

void Sheet::paintEvent(QPaintEvent*) {
  QPainter(this).fillRect(rect(), tokens(palette()).panel);
}

BusySheet::BusySheet(QWidget* parent) : Sheet(parent, 360), progress(new Text(TextStyle::headline)) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(36, 36, 36, 36);
  column->setSpacing(20);
  auto* cancel = new Button(Button::Kind::standard, QStringLiteral("Cancel"));
  connect(cancel, &QAbstractButton::clicked, this, &BusySheet::cancelled);
  progress->setAlignment(Qt::AlignHCenter);
  column->addWidget(new Spinner(32), 0, Qt::AlignHCenter);
  column->addWidget(progress);
  column->addWidget(cancel, 0, Qt::AlignHCenter);
  cancel->setFocus();
  new FocusRing(this);
  fit();
}

void BusySheet::setProgress(const QString& text) {
  if (progress->text() == text) return;
  progress->setText(text);
  fit();
  QAccessibleEvent event(progress, QAccessible::Alert);
  QAccessible::updateAccessibility(&event);
}

void BusySheet::closeEvent(QCloseEvent* event) {
  // The program closes it when the work has ended; then it is no spontaneous event.
  if (!event->spontaneous()) return event->accept();
  event->ignore();
  Q_EMIT cancelled();
}

AlertSheet::AlertSheet(QWidget* parent, const QString& message, const QString& informativeText,
                       const QStringList& buttons)
    : Sheet(parent, 420), information(new Text(TextStyle::body)) {
  setAttribute(Qt::WA_DeleteOnClose);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(28, 28, 28, 24);
  column->setSpacing(8);
  column->addWidget(new Text(TextStyle::verdict, message));
  information->setSelectable(true);
  column->addWidget(information);
  column->addSpacing(16);

  auto* row = new QHBoxLayout;
  row->setSpacing(12);
  row->addStretch();
  // The first button is the default; it stands last, where the eye ends.
  for (qsizetype i = buttons.size(); i-- > 0;) {
    auto* button = new Button(i == 0 ? Button::Kind::prominent : Button::Kind::standard, buttons[i]);
    connect(button, &QAbstractButton::clicked, this, [this, i] { done(static_cast<int>(i)); });
    row->addWidget(button, 0, Qt::AlignVCenter);
    if (i == 0) button->setFocus();
  }
  column->addLayout(row);
  setInformativeText(informativeText);
  setAccessibleName(message);
  setAccessibleDescription(informativeText);
  new FocusRing(this);
}

void AlertSheet::setInformativeText(const QString& text) {
  information->setText(text);
  fit();
}

}  // namespace zarnet
