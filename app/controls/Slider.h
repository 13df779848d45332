#pragma once

#include <QSlider>

namespace zarnet {

/// A horizontal slider that jumps to where it is clicked. A drag moves the knob and reports `moved` as it
/// goes; a value that the program sets reports nothing.
class Slider : public QSlider {
  Q_OBJECT

 public:
  explicit Slider(QWidget* parent = nullptr);

  QSize sizeHint() const override { return {160, 24}; }
  QSize minimumSizeHint() const override { return {40, 24}; }

  /// Takes a value from 0 to `maximum` without reporting it; ignored while the user drags the knob.
  void display(int value, int maximum);

 Q_SIGNALS:
  /// The user chose this value with the mouse, the wheel or a key.
  void moved(int value);

 protected:
  void paintEvent(QPaintEvent*) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;

 private:
  int valueAt(double x) const;
  bool displaying = false;
};

}  // namespace zarnet
