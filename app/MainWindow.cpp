#include "app/MainWindow.h"

#include "app/style/Translucency.h"
#include "desktop/Palette.h"

#include <QCloseEvent>
#include <QMoveEvent>
#include <QPainter>

namespace zarnet {

namespace {
constexpr qint64 settling = 400;  // ms, in which a window manager may still answer the program's last move

/// Nothing blurs what lies behind: as much shows through as leaves captions legible over black or white.
double backdropOpacity(const Tokens& colour) {
  return colour.dark ? 0.9 : 0.965;
}

}  // namespace

MainWindow::MainWindow() : translucent(canBeTranslucent()) {
  setWindowTitle(QStringLiteral("Zarnet"));
  setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                 Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint);
  if (translucent) setAttribute(Qt::WA_TranslucentBackground);
  sinceProgramMove.start();
}

void MainWindow::setBackdropVisible(bool visible) {
  if (backdropVisible == visible) return;
  backdropVisible = visible;
  update();
}

void MainWindow::place(const QPoint& corner, const QSize& size) {
  sinceProgramMove.restart();
  placed = corner;
  setFixedSize(size);
  move(corner);
}

void MainWindow::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  const Tokens colour = tokens(palette());
  painter.fillRect(rect(), translucent && backdropVisible
                               ? withOpacity(colour.window, backdropOpacity(colour))
                               : colour.window);
}

void MainWindow::moveEvent(QMoveEvent* event) {
  QMainWindow::moveEvent(event);
  checkDecorations();
  if (!isVisible() || sinceProgramMove.elapsed() < settling || pos() == placed) return;
  Q_EMIT movedByUser();
}

void MainWindow::resizeEvent(QResizeEvent* event) {
  QMainWindow::resizeEvent(event);
  checkDecorations();
}

void MainWindow::checkDecorations() {
  if (seenDecorations == decorations()) return;
  seenDecorations = decorations();
  Q_EMIT decorated();
}

void MainWindow::closeEvent(QCloseEvent* event) {
  event->accept();
  Q_EMIT closed();
}

}  // namespace zarnet
