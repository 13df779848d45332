#pragma once

#include <QElapsedTimer>
#include <QMainWindow>

namespace zarnet {

/// The one main window: a menu bar over a backdrop over the screens. It tells a move of the user's from a
/// move of the program's, and closing it ends the program.
class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  MainWindow();

  /// Shows the translucent backdrop, or an opaque ground; the ground also where no window can be translucent.
  void setBackdropVisible(bool visible);

  /// What the window manager puts around the window; empty until it has done so.
  QSize decorations() const { return frameGeometry().size() - size(); }
  /// Moves the window, its decorations included, to a corner, and sizes it without them.
  void place(const QPoint& corner, const QSize& size);

 Q_SIGNALS:
  void movedByUser();
  /// The window manager has put something else around the window than before.
  void decorated();
  void closed();

 protected:
  void paintEvent(QPaintEvent*) override;
  void moveEvent(QMoveEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void checkDecorations();

  const bool translucent;  ///< the backdrop, while it is shown
  bool backdropVisible = false;
  QElapsedTimer sinceProgramMove;  ///< the toolkit reports the program's own moves, too, some time later
  QPoint placed;
  QSize seenDecorations{0, 0};
};

}  // namespace zarnet
