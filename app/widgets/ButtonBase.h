#pragma once

#include "desktop/Palette.h"

#include <QAbstractButton>
#include <QPainter>
#include <QVariantAnimation>

namespace zarnet {

/// What all buttons of the application share: Return and Enter activate the focused one, hover and press
/// shift the fill gradually. Derived classes draw themselves in `paint`.
class ButtonBase : public QAbstractButton {
  Q_OBJECT

 public:
  explicit ButtonBase(QWidget* parent = nullptr);

  /// Of the button's outline; the ring around the focused one runs parallel to it.
  virtual double cornerRadius() const { return 8; }

 protected:
  /// Draws the control, as if it were enabled; the painter is antialiased.
  virtual void paint(QPainter& painter) = 0;

  Tokens colours() const { return tokens(palette()); }
  /// A fill moved by the state of the pointer: 4 % towards the text's colour under it, 8 % while pressed.
  QColor shifted(const QColor& fill) const;
  /// The same amount as a number, for fills that are an opacity of one colour: 0, 0.04, 0.08, or on the way
  /// between.
  double pointerShift() const { return shift; }

  void paintEvent(QPaintEvent*) final;
  void keyPressEvent(QKeyEvent* event) override;
  bool event(QEvent* event) override;

 private:
  void animateTo(double target);

  QVariantAnimation animation;
  double shift = 0;
};

}  // namespace zarnet
