#pragma once

#include "app/style/Typography.h"

#include <QString>
#include <QTextLayout>
#include <QWidget>

namespace zarnet {

/// A text of the screens: it wraps within its width, also inside words that are longer than a line, or is
/// elided to one line with the whole text as its tooltip. A selectable text can be marked with the mouse and
/// copied.
class Text : public QWidget {
  Q_OBJECT

 public:
  enum class Overflow { wrap, elide };

  explicit Text(TextStyle style, const QString& text = {}, QWidget* parent = nullptr);

  const QString& text() const { return content; }
  void setText(const QString& text);
  /// Draws in the secondary colour.
  void setSecondary(bool secondary);
  void setOverflow(Overflow overflow);
  /// Qt::AlignLeft, Qt::AlignHCenter or Qt::AlignRight; in more room than they need, lines stand
  /// in the middle of the height.
  void setAlignment(Qt::Alignment alignment);
  void setSelectable(bool selectable);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override;
  bool hasHeightForWidth() const override { return overflow == Overflow::wrap; }
  int heightForWidth(int width) const override;

 public Q_SLOTS:
  /// Puts the marked text, if any, on the clipboard.
  void copy();
  void selectAll();

 protected:
  void paintEvent(QPaintEvent*) override;
  void resizeEvent(QResizeEvent*) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  double layOut(QTextLayout& layout, const QString& shown, double width) const;
  void rebuild();
  double top() const;
  int cursorAt(const QPointF& point) const;
  void mark(int anchor, int cursor);

  QString content;
  QTextLayout layout;
  Overflow overflow = Overflow::wrap;
  Qt::Alignment alignment = Qt::AlignLeft;
  bool secondary = false;
  bool selectable = false;
  int markAnchor = 0;
  int markCursor = 0;
};

}  // namespace zarnet
