#include "results/TextBlock.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QTextOption>

namespace zarnet {

namespace {

/// Letters as large as this are set a little tighter.
constexpr int displaySize = 28;
constexpr double displayTracking = -0.3;

QString withLineSeparators(QString text) {
  text.replace(QLatin1String("\r\n"), QString(QChar::LineSeparator));
  for (const QChar lineEnd : {QChar(u'\n'), QChar(u'\r'), QChar(QChar::ParagraphSeparator)})
    text.replace(lineEnd, QChar::LineSeparator);
  return text;
}

}  // namespace

QFont resultsFont(int size, QFont::Weight weight) {
  QFont font = QGuiApplication::font();
  font.setFamilies({QStringLiteral("Inter"), font.family()});
  font.setPixelSize(size);
  font.setWeight(weight);
  font.setItalic(false);
  font.setHintingPreference(QFont::PreferNoHinting);
  font.setStyleStrategy(
      static_cast<QFont::StyleStrategy>(QFont::PreferAntialias | QFont::NoSubpixelAntialias));
  if (size >= displaySize) font.setLetterSpacing(QFont::AbsoluteSpacing, displayTracking);
  return font;
}

TextBlock::TextBlock(const QString& text, const QFont& font, double width, double maximumHeight)
    : layout(withLineSeparators(text), font) {
  QTextOption option;
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  option.setAlignment(text.isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft);
  layout.setTextOption(option);
  if (text.isEmpty()) return;
  layout.beginLayout();
  while (textHeight < maximumHeight) {
    QTextLine line = layout.createLine();
    if (!line.isValid()) break;
    line.setLeadingIncluded(true);
    line.setLineWidth(width);
    line.setPosition({0, textHeight});
    textHeight += line.height();
  }
  layout.endLayout();
}

void TextBlock::draw(QPainter& painter, QPointF topLeft, const QColor& colour) const {
  painter.setPen(colour);
  layout.draw(&painter, topLeft);
}

}  // namespace zarnet
