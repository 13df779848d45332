#pragma once

#include <QColor>
#include <QFont>
#include <QPainter>
#include <QString>
#include <QTextLayout>

namespace zarnet {

/// A font of the results image: Inter, or the desktop's own font where Inter is not installed; characters
/// that it lacks come from whatever font has them. `size` is in pixels.
QFont resultsFont(int size, QFont::Weight weight);

/// A text laid out in lines no wider than a box: broken between words, and inside one that is wider than the
/// box. Line ends of the text are kept. Right-to-left paragraphs are set from the right edge.
class TextBlock {
 public:
  /// Lays out lines until they are `maximumHeight` high; what would follow is left out.
  TextBlock(const QString& text, const QFont& font, double width, double maximumHeight);
  TextBlock(const TextBlock&) = delete;
  TextBlock& operator=(const TextBlock&) = delete;

  /// Height of all lines, leading included, in pixels. 0 for an empty text.
  double height() const { return textHeight; }

  /// Draws the lines downwards from the box's top left corner. Nothing is clipped: marks that reach out of
  /// their line are drawn whole.
  void draw(QPainter& painter, QPointF topLeft, const QColor& colour) const;

 private:
  QTextLayout layout;
  double textHeight = 0;
};

}  // namespace zarnet
