#pragma once

#include <QPointer>
#include <QWidget>

namespace zarnet {

/// A small panel that hangs from a control and closes when the user clicks elsewhere, goes elsewhere or
/// presses Escape. While it is open the keyboard is its own. It is a part of its window, since assistive
/// technology does not find pop-up windows.
class Popover : public QWidget {
  Q_OBJECT

 public:
  /// `name` is what screen readers call it.
  Popover(QWidget* window, const QString& name);

  /// Takes the content over. Call once.
  void setContent(QWidget* content);
  /// Opens below `anchor`, or above it where there is no room, and gives the focus to its first control. When
  /// it closes, `anchor` gets the focus that it had.
  void openUnder(QWidget* anchor);

 Q_SIGNALS:
  void closed();

 protected:
  void paintEvent(QPaintEvent*) override;
  void hideEvent(QHideEvent*) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool event(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  bool focusNextPrevChild(bool next) override;

 private:
  QPointer<QWidget> anchor;
};

}  // namespace zarnet
