#pragma once

#include <QWidget>

namespace zarnet {

/// A small panel that hangs from a control and closes when the user clicks elsewhere or presses Escape. While
/// it is open the keyboard is its own.
class Popover : public QWidget {
  Q_OBJECT

 public:
  explicit Popover(QWidget* parent);

  /// Takes the content over. Call once.
  void setContent(QWidget* content);
  /// Opens below `anchor`, kept within its screen.
  void openUnder(const QWidget* anchor);

 Q_SIGNALS:
  void closed();

 protected:
  void paintEvent(QPaintEvent*) override;
  void hideEvent(QHideEvent*) override;
  void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace zarnet
