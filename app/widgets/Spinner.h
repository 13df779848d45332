#pragma once

#include <QTimer>
#include <QWidget>

namespace zarnet {

/// An indeterminate progress indicator. Turns only while it is visible; with reduced motion it steps once a
/// second instead of gliding.
class Spinner : public QWidget {
  Q_OBJECT

 public:
  /// `points` is its width and height.
  explicit Spinner(int points, QWidget* parent = nullptr);

  QSize sizeHint() const override { return {points, points}; }

 protected:
  void paintEvent(QPaintEvent*) override;
  void showEvent(QShowEvent*) override;
  void hideEvent(QHideEvent*) override;

 private:
  const int points;
  QTimer timer;
  int step = 0;
};

}  // namespace zarnet
