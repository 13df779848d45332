#pragma once

#include <QSlider>

namespace zarnet {

/// A horizontal slider from 0 to a maximum that jumps to where it is clicked. A drag moves the knob and
/// reports `moved` as it goes; an amount that the program sets reports nothing. The wheel scrolls what lies
/// behind.
class Slider : public QSlider {
  Q_OBJECT

 public:
  /// What the toolkit counts for each unit of the amount.
  static constexpr double resolution = 1000;

  /// An arrow key moves it by `step`.
  explicit Slider(double step, QWidget* parent = nullptr);

  QSize sizeHint() const override { return {160, 24}; }
  QSize minimumSizeHint() const override { return {40, 24}; }

  /// Takes an amount from 0 to `most` without reporting it; ignored while the user drags the knob.
  void display(double amount, double most);

 Q_SIGNALS:
  /// The user chose this amount with the mouse, a key or a screen reader.
  void moved(double amount);

 protected:
  void paintEvent(QPaintEvent*) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  int valueAt(double x) const;
};

}  // namespace zarnet
