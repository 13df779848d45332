#pragma once

#include <QComboBox>

namespace zarnet {

/// A pop-up list of which one entry is chosen, 34 high and 130 wide. Give it an accessible name.
class Picker : public QComboBox {
  Q_OBJECT

 public:
  explicit Picker(QWidget* parent = nullptr);

  QSize sizeHint() const override { return {130, 34}; }
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent*) override;
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  /// Chooses the entry that a screen reader has selected in the list.
  void takeSelection();
};

}  // namespace zarnet
