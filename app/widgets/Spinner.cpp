#include "app/widgets/Spinner.h"

#include "app/style/Motion.h"
#include "desktop/Palette.h"

#include <QPainter>

namespace zarnet {

namespace {
constexpr int spokes = 12;
}

Spinner::Spinner(int size, QWidget* parent) : QWidget(parent), points(size) {
  setFixedSize(size, size);
  setAccessibleName(QStringLiteral("In progress"));
  connect(&timer, &QTimer::timeout, this, [this] {
    step = (step + 1) % spokes;
    update();
  });
}

void Spinner::showEvent(QShowEvent*) {
  step = 0;
  timer.start(motionAllowed() ? 80 : 1000);
}
void Spinner::hideEvent(QHideEvent*) {
  timer.stop();
}

void Spinner::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QColor ink = tokens(palette()).secondary;
  painter.translate(width() / 2.0, height() / 2.0);
  const double outer = points / 2.0 - 1;
  for (int spoke = 0; spoke < spokes; ++spoke) {
    const int age = (step - spoke + spokes) % spokes;
    painter.setPen(QPen(withOpacity(ink, 1.0 - 0.07 * age), points / 12.0, Qt::SolidLine, Qt::RoundCap));
    painter.save();
    painter.rotate(360.0 / spokes * spoke);
    painter.drawLine(QPointF(0, -outer * 0.55), QPointF(0, -outer));
    painter.restore();
  }
}

}  // namespace zarnet
