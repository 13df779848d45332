#pragma once

#include <QElapsedTimer>
#include <QMainWindow>
#include <functional>

namespace zarnet {

/// The one main window: a menu bar over a backdrop over the screens. It tells a move of the user's from a
/// move of the program's, and closing it ends the program.
class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  MainWindow();

  /// Whether the backdrop is translucent while it is shown; fixed when the window is made.
  bool isTranslucent() const { return translucent; }

  /// Shows the translucent backdrop, or an opaque ground.
  void setBackdropVisible(bool visible);

  /// Moves and sizes the window so that its frame, decorations included, is `frame`.
  void setFrame(const QRect& frame);

 Q_SIGNALS:
  void movedByUser();
  void closed();

 protected:
  void paintEvent(QPaintEvent*) override;
  void moveEvent(QMoveEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  const bool translucent;
  bool backdropVisible = false;
  QElapsedTimer sinceProgramMove;  ///< the toolkit reports the program's own moves, too, some time later
  QPoint placed;
};

}  // namespace zarnet
