#include "results/TextBlock.h"

#include <QFontInfo>
#include <QImage>

#include <gtest/gtest.h>

namespace zarnet {
namespace {

constexpr int width = 300;
constexpr int margin = 100;

/// The box around all that a text paints, from the text's own corner.
QRect inkOf(const TextBlock& block) {
  QImage canvas(width + 2 * margin, static_cast<int>(block.height()) + 2 * margin,
                QImage::Format_ARGB32_Premultiplied);
  canvas.fill(Qt::white);
  QPainter painter(&canvas);
  block.draw(painter, {margin, margin}, Qt::black);
  painter.end();
  QRect ink;
  for (int y = 0; y < canvas.height(); ++y) {
    for (int x = 0; x < canvas.width(); ++x) {
      if (canvas.pixel(x, y) != 0xFFFFFFFF) ink |= QRect(x, y, 1, 1);
    }
  }
  return ink.translated(-margin, -margin);
}

/// A block in the font of the titles.
struct Title : TextBlock {
  explicit Title(const QString& text, double maximumHeight = 30000)
      : TextBlock(text, resultsFont(23, QFont::DemiBold), width, maximumHeight) {}
};

TEST(TextBlock, StaysInsideItsBoxWhateverTheScript) {
  const double oneLine = Title(QStringLiteral("x")).height();
  for (const QString& text :
       {QStringLiteral("A title of many words that needs more than a single line of its box"),
        QStringLiteral("Supercalifragilisticexpialidociouswithoutanyspaceatallinit"), QString(400, u'W'),
        QStringLiteral("פתיחה - הנמל עם שחר, הקלטה חיה מתוך האולם הגדול בעיר העתיקה"),
        QStringLiteral("زهرة المدائن - تسجيل حي من القاعة الكبيرة في المدينة القديمة"),
        QStringLiteral(
            "戦場のメリークリスマスライブ録音リマスター特別版長いタイトルの例戦場のメリークリスマス"),
        QStringLiteral("🎧🎹🎻🎧🎹🎻🎧🎹🎻🎧🎹🎻🎧🎹🎻🎧🎹🎻🎧🎹🎻🎧🎹🎻🎧🎹🎻")}) {
    const Title block(text);
    const QRect ink = inkOf(block);
    EXPECT_GE(block.height(), 2 * oneLine) << text.toStdString();
    EXPECT_GE(ink.left(), -2) << text.toStdString();
    EXPECT_LE(ink.right(), width + 2) << text.toStdString();
    EXPECT_GE(ink.top(), -2) << text.toStdString();
    EXPECT_LE(ink.bottom(), block.height() + 2) << text.toStdString();
  }
}

TEST(TextBlock, KeepsLineEndsAndGivesNoHeightToNothing) {
  const double oneLine = Title(QStringLiteral("a")).height();
  EXPECT_GT(oneLine, 20);
  for (const char* text : {"a\nb", "a\r\nb", "a\rb", "a\u2029b", "a\u2028b"})
    EXPECT_EQ(Title(QString::fromUtf8(text)).height(), 2 * oneLine) << text;
  EXPECT_EQ(Title(QString()).height(), 0);
}

}  // namespace
}  // namespace zarnet
