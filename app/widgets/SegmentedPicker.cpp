#include "app/widgets/SegmentedPicker.h"

#include "app/style/Drawing.h"
#include "app/style/Typography.h"
#include "app/widgets/ButtonBase.h"

#include <QButtonGroup>
#include <QHBoxLayout>

namespace zarnet {

namespace {

class Segment : public ButtonBase {
 public:
  Segment(const QString& label, QWidget* parent) : ButtonBase(parent) {
    setText(label);
    setCheckable(true);
    setAutoExclusive(true);
    setFont(textFont(TextStyle::button));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  }

 protected:
  void paint(QPainter& painter) override {
    const Tokens colour = colours();
    if (isChecked()) {
      const QColor raised = colour.dark ? mixed(colour.controlFill, Qt::white, 0.14) : QColor(Qt::white);
      drawBox(painter, QRectF(rect()).adjusted(2, 2, -2, -2), 6, raised, withOpacity(Qt::black, 0.12), 1);
    }
    painter.setPen(isChecked() || underMouse() ? colour.text : colour.secondary);
    painter.setFont(font());
    painter.drawText(rect(), Qt::AlignCenter, text());
  }
};

}  // namespace

SegmentedPicker::SegmentedPicker(const QStringList& labels, QWidget* parent)
    : QWidget(parent), group(new QButtonGroup(this)) {
  setFixedHeight(32);
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(0);
  for (qsizetype i = 0; i < labels.size(); ++i) {
    auto* segment = new Segment(labels[i], this);
    row->addWidget(segment, 1);
    group->addButton(segment, static_cast<int>(i));
  }
  connect(group, &QButtonGroup::idToggled, this, [this](int index, bool on) {
    if (on && !signalsBlocked()) Q_EMIT picked(index);
  });
}

int SegmentedPicker::chosen() const {
  return group->checkedId();
}

void SegmentedPicker::choose(int index) {
  if (index == chosen()) return;
  const bool before = blockSignals(true);
  if (QAbstractButton* segment = group->button(index)) {
    segment->setChecked(true);
  } else if (QAbstractButton* current = group->checkedButton()) {
    group->setExclusive(false);
    current->setChecked(false);
    group->setExclusive(true);
  }
  blockSignals(before);
}

void SegmentedPicker::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const Tokens colour = tokens(palette());
  drawBox(painter, rect(), 8, mixed(colour.sliderTrack, colour.panel, colour.dark ? 0.3 : 0.5), {}, 0);
}

}  // namespace zarnet
