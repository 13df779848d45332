#include "results/ResultsImage.h"
#include "results/ResultsLayout.h"
#include "results/TextBlock.h"
#include "tests/support/Failures.h"

#include <gtest/gtest.h>

namespace zarnet {
namespace {

TEST(ResultsImage, RefusesNoAnswersAndTooMany) {
  const auto refusal = [](std::size_t tracks) {
    return test::failureOf<ResultsError>([&] {
      renderResultsPNG(std::vector<TrackResult>(tracks, {"Song", "A", "B"}), "MP3", 8, true);
    });
  };
  EXPECT_EQ(refusal(0), "Zarnet.Results 1: Complete a comparison first.");
  EXPECT_EQ(refusal(239), "Zarnet.Results 1: This comparison is too large to save as one image.");
  EXPECT_EQ(refusal(238), "");
  EXPECT_NE(test::failureOf<ResultsError>([] {
              renderResultsPNG({{QString(250'001, QChar(0x200B)), "A", "B"}}, "MP3", 8, true);
            }),
            "")
      << "a text of no width, which takes long to lay out";
}

TEST(ResultsImage, CutsSharesToWholePercent) {
  EXPECT_EQ(shareText(29, 100), "28%");
}

/// A block in the font of the titles, 300 pixels wide.
struct Title : TextBlock {
  explicit Title(const QString& text) : TextBlock(text, resultsFont(23, QFont::DemiBold), 300, 30000) {}
};

TEST(TextBlock, WrapsAndStaysInsideItsBoxWhateverTheScript) {
  for (const char* text :
       {"A title of many words that needs more than a single line of its box",
        "Supercalifragilisticexpialidociouswithoutanyspaceatallinit",
        "פתיחה - הנמל עם שחר, הקלטה חיה מתוך האולם הגדול בעיר העתיקה",
        "戦場のメリークリスマスライブ録音リマスター特別版長いタイトルの例", "🎧🎹🎻🎧🎹🎻🎧🎹🎻🎧🎹🎻🎧🎹🎻🎧🎹🎻🎧🎹🎻"}) {
    const Title block(text);
    EXPECT_GE(block.height(), 2 * Title("x").height()) << text;
    QImage canvas(500, static_cast<int>(block.height()) + 200, QImage::Format_RGB32);
    canvas.fill(Qt::white);
    const QImage blank = canvas;
    QPainter painter(&canvas);
    block.draw(painter, {100, 100}, Qt::black);
    // Nothing is left once the box is wiped.
    painter.fillRect(canvas.rect().adjusted(98, 98, -98, -97), Qt::white);
    painter.end();
    EXPECT_EQ(canvas, blank) << text;
  }
}

TEST(TextBlock, KeepsLineEndsAndGivesNoHeightToNothing) {
  const double oneLine = Title("a").height();
  for (const char* text : {"a\nb", "a\r\nb", "a\u2028b"})
    EXPECT_EQ(Title(text).height(), 2 * oneLine) << text;
  EXPECT_EQ(Title("").height(), 0);
}

}  // namespace
}  // namespace zarnet
