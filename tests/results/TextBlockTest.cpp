#include "results/TextBlock.h"

#include <QImage>

#include <gtest/gtest.h>

namespace zarnet {
namespace {

constexpr int width = 300;
constexpr int margin = 100;

/// A block in the font of the titles.
struct Title : TextBlock {
  explicit Title(const QString& text) : TextBlock(text, resultsFont(23, QFont::DemiBold), width, 30000) {}
};

TEST(TextBlock, WrapsAndStaysInsideItsBoxWhateverTheScript) {
  for (const char* text :
       {"A title of many words that needs more than a single line of its box",
        "Supercalifragilisticexpialidociouswithoutanyspaceatallinit",
        "פתיחה - הנמל עם שחר, הקלטה חיה מתוך האולם הגדול בעיר העתיקה",
        "戦場のメリークリスマスライブ録音リマスター特別版長いタイトルの例戦場のメリークリスマス",
        "🎧🎹🎻🎧🎹🎻🎧🎹🎻🎧🎹🎻🎧🎹🎻🎧🎹🎻🎧🎹🎻🎧🎹🎻🎧🎹🎻"}) {
    const Title block(text);
    EXPECT_GE(block.height(), 2 * Title("x").height()) << text;
    QImage canvas(width + 2 * margin, static_cast<int>(block.height()) + 2 * margin, QImage::Format_RGB32);
    canvas.fill(Qt::white);
    QPainter painter(&canvas);
    block.draw(painter, {margin, margin}, Qt::black);
    painter.end();
    const QRect box = canvas.rect().adjusted(margin - 2, margin - 2, 2 - margin, 3 - margin);
    for (int y = 0; y < canvas.height(); ++y) {
      for (int x = 0; x < canvas.width(); ++x)
        ASSERT_TRUE(canvas.pixel(x, y) == 0xFFFFFFFF || box.contains(x, y)) << text;
    }
  }
}

TEST(TextBlock, KeepsLineEndsAndGivesNoHeightToNothing) {
  const double oneLine = Title("a").height();
  EXPECT_GT(oneLine, 20);
  for (const char* text : {"a\nb", "a\r\nb", "a\rb", "a\u2029b", "a\u2028b"})
    EXPECT_EQ(Title(text).height(), 2 * oneLine) << text;
  EXPECT_EQ(Title("").height(), 0);
}

}  // namespace
}  // namespace zarnet
