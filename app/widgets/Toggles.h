#pragma once

#include "app/widgets/ButtonBase.h"

#include <QString>

namespace zarnet {

/// A check box with its text beside it; the text is part of what can be clicked.
class CheckBox : public ButtonBase {
  Q_OBJECT

 public:
  explicit CheckBox(const QString& text, QWidget* parent = nullptr);
  QSize sizeHint() const override;

 protected:
  void paint(QPainter& painter) override;
};

/// A switch without a text of its own, 38 by 22; give it an accessible name.
class Switch : public ButtonBase {
  Q_OBJECT

 public:
  explicit Switch(QWidget* parent = nullptr);
  QSize sizeHint() const override { return {38, 22}; }
  double cornerRadius() const override { return 11; }

 protected:
  void paint(QPainter& painter) override;
  void checkStateSet() override;
  void nextCheckState() override;

 private:
  QVariantAnimation slide;
  double knob = 0;  ///< 0 off, 1 on
};

}  // namespace zarnet
