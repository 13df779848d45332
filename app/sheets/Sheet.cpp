#include "app/sheets/Sheet.h"

#include "app/widgets/Accessibility.h"
#include "app/widgets/Button.h"
#include "app/widgets/FocusRing.h"
#include "app/widgets/Spinner.h"
#include "app/widgets/Text.h"
#include "desktop/Palette.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QScrollArea>
#include <QVBoxLayout>
#include <algorithm>

namespace zarnet {

namespace {
constexpr int alertPadding = 28;
constexpr int textWidth = 364;  // of an alert
}  // namespace

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
  announce(*progress, text);
}

void BusySheet::closeEvent(QCloseEvent* event) {
  // The program closes it when the work has ended; then it is no spontaneous event.
  if (!event->spontaneous()) return event->accept();
  event->ignore();
  Q_EMIT cancelled();
}

AlertSheet::AlertSheet(QWidget* parent, const QString& message, const QString& informativeText,
                       const QStringList& buttons)
    : Sheet(parent, textWidth + 2 * alertPadding),
      information(new Text(TextStyle::body)),
      scroll(new QScrollArea) {
  setAttribute(Qt::WA_DeleteOnClose);
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(alertPadding, alertPadding, alertPadding, 24);
  column->setSpacing(8);
  column->addWidget(new Text(TextStyle::verdict, message));
  information->setSelectable(true);
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  scroll->setWidgetResizable(true);
  scroll->viewport()->setAutoFillBackground(false);
  scroll->setWidget(information);
  information->setAutoFillBackground(false);
  column->addWidget(scroll);
  column->addSpacing(16);

  auto* row = new QHBoxLayout;
  row->setSpacing(12);
  row->addStretch();
  // The first button is the default; it stands last, where the eye ends.
  Button* standard = nullptr;
  for (qsizetype i = buttons.size(); i-- > 0;) {
    auto* button = new Button(i == 0 ? Button::Kind::prominent : Button::Kind::standard, buttons[i]);
    connect(button, &QAbstractButton::clicked, this, [this, i] { done(static_cast<int>(i)); });
    row->addWidget(button, 0, Qt::AlignVCenter);
    standard = button;
  }
  column->addLayout(row);
  standard->setFocus();  // now that it belongs to the sheet
  setAccessibleName(message);
  setInformativeText(informativeText);
  new FocusRing(this);
}

void AlertSheet::keyPressEvent(QKeyEvent* event) {
  // A focused button has its own answer to Return; anything else leaves it to the default one.
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) return done(0);
  Sheet::keyPressEvent(event);
}

void AlertSheet::setInformativeText(const QString& text) {
  information->setText(text);
  setAccessibleDescription(text);
  const int wanted = information->heightForWidth(textWidth);
  const int limit = screen()->availableGeometry().height() / 2;
  scroll->setFixedHeight(std::min(wanted, limit));
  scroll->setFocusPolicy(wanted > limit ? Qt::StrongFocus : Qt::NoFocus);
  fit();
}

}  // namespace zarnet
