#pragma once

#include <QPointer>
#include <QWidget>

namespace zarnet {

/// Shows where the keyboard is: a ring of the accent, 2 pixels wide, 2 pixels outside the focused control.
/// One for each window; it lies over the content, takes no clicks, and is seen only when the focus moved
/// while the keyboard was in use.
class FocusRing : public QWidget {
  Q_OBJECT

 public:
  /// Watches the widgets inside `content`.
  explicit FocusRing(QWidget* content);

 protected:
  void paintEvent(QPaintEvent*) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void follow(QWidget* widget);
  void place();

  QPointer<QWidget> focused;
  inline static bool byKeyboard = false;  ///< the latest input was a key, not the pointer, in any window
};

}  // namespace zarnet
