#pragma once

#include "app/style/Typography.h"

#include <QString>
#include <QWidget>

namespace zarnet {

/// One line of text whose digits all stand in cells of equal width, so that a running clock does not jitter.
class ClockText : public QWidget {
  Q_OBJECT

 public:
  explicit ClockText(TextStyle style, QWidget* parent = nullptr);

  const QString& text() const { return content; }
  void setText(const QString& text);
  void setSecondary(bool secondary);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent*) override;

 private:
  QString content;
  bool secondary = false;
};

}  // namespace zarnet
