#include "app/NativeRoot.h"

#include "app/screens/ListenScreen.h"
#include "app/screens/SetupScreen.h"
#include "app/screens/TallyScreen.h"
#include "app/sheets/Sheet.h"
#include "app/style/Drawing.h"
#include "app/widgets/Accessibility.h"
#include "app/widgets/FocusRing.h"
#include "desktop/Palette.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMetaObject>
#include <QMimeData>
#include <QPainter>
#include <QPointer>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>
#include <utility>

namespace zarnet {

namespace {

constexpr int padding = 28;
constexpr int widest = 1200;

/// The frame shown around the content while files hover over the window.
class Outline : public QWidget {
 public:
  explicit Outline(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    drawBox(painter, rect(), 12, Qt::transparent, tokens(palette()).accent, 3);
  }
};

}  // namespace

NativeRoot::NativeRoot(NativeModel& ofModel, std::function<void(double)> heightReceiver, QWidget* parent)
    : ModelView(ofModel, parent),
      onContentHeight(std::move(heightReceiver)),
      scroll(new QScrollArea(this)),
      content(new QWidget),
      page(new QVBoxLayout),
      outline(new Outline(this)) {
  setAcceptDrops(true);

  content->setMaximumWidth(widest);
  page->setContentsMargins(padding, padding, padding, padding);
  page->setSpacing(0);
  page->addStretch(1);
  content->setLayout(page);
  content->installEventFilter(this);

  auto* frame = new QVBoxLayout(this);
  frame->setContentsMargins(0, 0, 0, 0);
  frame->addWidget(scroll);
  scroll->setFrameShape(QFrame::NoFrame);
  scroll->setFocusPolicy(Qt::NoFocus);
  scroll->setWidgetResizable(true);
  scroll->setAlignment(Qt::AlignTop | Qt::AlignHCenter);
  scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  scroll->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  scroll->viewport()->setAutoFillBackground(false);
  scroll->setWidget(content);
  content->setAutoFillBackground(false);
  new FocusRing(content);

  follow([this] {
    QWidget* focused = window()->focusWidget();
    showScreen();
    showSheets();
    keepFocus(focused);
    update();
  });
}

Screen& NativeRoot::screenOf(Stage stage) {
  const auto made = [this](auto*& screen) -> Screen& {
    if (screen != nullptr) return *screen;
    screen = new std::remove_reference_t<decltype(*screen)>(model);
    screen->hide();
    page->insertWidget(0, screen);
    return *screen;
  };
  switch (stage) {
    case Stage::setup:
      return made(setup);
    case Stage::tally:
      return made(tally);
    case Stage::listen:
    case Stage::reveal:  // the listening screen with the answer in place of the question
      break;
  }
  return made(listen);
}

void NativeRoot::showScreen() {
  Screen& screen = screenOf(model.stage);
  if (shown != &screen) {
    if (shown != nullptr) shown->hide();
    shown = &screen;
    shown->show();
  }
  shown->refresh();
  if (const std::pair<Stage, std::int64_t> now{model.stage, model.index}; now != announced) {
    announced = now;
    announce();
  }
}

void NativeRoot::announce() {
  // The reveal takes the place of what was answered, at the end of the screen; all else begins at its top.
  if (*model.stage != Stage::reveal) scroll->verticalScrollBar()->setValue(0);
  zarnet::announce(*shown, shown->accessibleName());
  focusOn(shown->firstFocus());
}

void NativeRoot::keepFocus(QWidget* before) {
  const auto takes = [this](const QWidget* control) {
    return control != nullptr && control->isEnabled() && control->isVisibleTo(this);
  };
  if (before != nullptr && content->isAncestorOf(before) && !takes(before)) {
    before->clearFocus();
    lostFocus = before;
    focusIsLost = true;
  }
  if (window()->focusWidget() != nullptr) focusIsLost = false;
  if (!focusIsLost) return;
  // The same control once it is back; while there is neither, as during an import, it stays lost.
  QWidget* next = takes(lostFocus) ? lostFocus.data() : shown->nextFocus();
  if (takes(next)) focusOn(next);
}

void NativeRoot::focusOn(QWidget* control) {
  focusIsLost = false;
  control->setFocus(Qt::OtherFocusReason);
  // Once everything is laid out, which takes several posted events.
  QTimer::singleShot(0, control, [this, control] { scroll->ensureWidgetVisible(control, 0, padding); });
}

void NativeRoot::showSheets() {
  if (model.busy) {
    const bool begins = busySheet == nullptr;
    if (begins) {
      busySheet = new BusySheet(window());
      connect(busySheet, &BusySheet::cancelled, this, [this] { model.cancel(); });
    }
    busySheet->setProgress(model.progress);
    if (begins) busySheet->open();
  } else if (busySheet != nullptr) {
    busySheet->close();
    busySheet->deleteLater();
    busySheet = nullptr;
  }
  if (model.error->has_value() && alert == nullptr && busySheet == nullptr) {
    alert = new AlertSheet(window(), QStringLiteral("Zarnet"), **model.error, {QStringLiteral("OK")});
    connect(alert, &QDialog::finished, this, [this] {
      alert = nullptr;  // it deletes itself; an error that comes now gets an alert of its own
      model.error = std::nullopt;
    });
    alert->open();
  } else if (model.error->has_value() && alert != nullptr) {
    alert->setInformativeText(**model.error);
  } else if (!model.error->has_value() && alert != nullptr) {
    alert->close();
  }
}

void NativeRoot::reportHeight() {
  if (content->width() <= 0) return;
  const double height =
      content->hasHeightForWidth() ? content->heightForWidth(content->width()) : content->sizeHint().height();
  if (height == reportedHeight) return;
  reportedHeight = height;
  onContentHeight(height);
}

bool NativeRoot::eventFilter(QObject* watched, QEvent* event) {
  if (watched == content && (event->type() == QEvent::LayoutRequest || event->type() == QEvent::Resize)) {
    // The layout takes this event after us; what it comes to is known in the next turn.
    QMetaObject::invokeMethod(this, &NativeRoot::reportHeight, Qt::QueuedConnection);
  }
  return QWidget::eventFilter(watched, event);
}

void NativeRoot::paintEvent(QPaintEvent*) {
  if (!model.glass) QPainter(this).fillRect(rect(), tokens(palette()).window);
}

void NativeRoot::resizeEvent(QResizeEvent*) {
  outline->setGeometry(rect());
}

void NativeRoot::changeEvent(QEvent* event) {
  if (event->type() == QEvent::PaletteChange) update();
  QWidget::changeEvent(event);
}

void NativeRoot::setTargeted(bool targetedNow) {
  if (targeted == targetedNow) return;
  targeted = targetedNow;
  outline->raise();
  outline->setVisible(targeted);
}

bool NativeRoot::takesDrops() const {
  return *model.stage == Stage::setup && !model.importing && !model.busy;
}

bool NativeRoot::takes(const QDropEvent& drag) const {
  return takesDrops() && drag.possibleActions().testFlag(Qt::CopyAction) && carriesFiles(*drag.mimeData());
}

bool NativeRoot::drop(const std::vector<std::shared_ptr<ItemProvider>>& providers) {
  if (!takesDrops()) return false;
  loadFiles(providers, [self = QPointer<NativeRoot>(this)](const std::vector<std::filesystem::path>& files) {
    if (self != nullptr && !files.empty()) self->model.importFiles(files);
  });
  return true;
}

void NativeRoot::dragEnterEvent(QDragEnterEvent* event) {
  if (!takes(*event)) return event->ignore();
  event->setDropAction(Qt::CopyAction);
  event->accept();
  setTargeted(true);
}

void NativeRoot::dragLeaveEvent(QDragLeaveEvent*) {
  setTargeted(false);
}

void NativeRoot::dropEvent(QDropEvent* event) {
  setTargeted(false);
  if (!takes(*event) || !drop(droppedItems(*event->mimeData()))) return event->ignore();
  event->setDropAction(Qt::CopyAction);
  event->accept();
}

}  // namespace zarnet
