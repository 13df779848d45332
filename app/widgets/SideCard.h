#pragma once

#include "app/widgets/ButtonBase.h"

#include <QString>

namespace zarnet {

/// A button that can be marked as the selected one of several, for the eye and for a screen reader.
class SelectableButton : public ButtonBase {
  Q_OBJECT

 public:
  using ButtonBase::ButtonBase;

  bool isSelected() const { return selected; }
  void setSelected(bool selected);

 private:
  bool selected = false;
};

/// One of the two cards that choose what is heard: the side's letter, its identity once that is revealed, and
/// whether it is selected. At least 142 high; fills its share of the width.
class SideCard : public SelectableButton {
  Q_OBJECT

 public:
  explicit SideCard(const QString& side, QWidget* parent = nullptr);

  /// What the side turned out to be, with its format under it; empty texts hide both.
  void setIdentity(const QString& identity, const QString& format);
  /// Lets the window show through the unselected card.
  void setGlass(bool glass);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return {160, sizeHint().height()}; }
  double cornerRadius() const override { return 18; }

 protected:
  void paint(QPainter& painter) override;

 private:
  const QString side;
  QString identity;
  QString format;
  bool glass = false;
};

/// One of the three answers. Fills its share of the row.
class AnswerButton : public SelectableButton {
  Q_OBJECT

 public:
  explicit AnswerButton(const QString& label, QWidget* parent = nullptr);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }
  double cornerRadius() const override { return 10; }

 protected:
  void paint(QPainter& painter) override;
};

}  // namespace zarnet
