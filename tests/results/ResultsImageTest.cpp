#include "results/ResultsImage.h"
#include "results/ResultsLayout.h"
#include "results/TextBlock.h"
#include "tests/support/Failures.h"

#include <gtest/gtest.h>

namespace zarnet {
namespace {

const QColor ink(31, 36, 46);
const QColor muted(102, 110, 122);
const QColor page(245, 246, 247);
const QColor gold(161, 120, 31);
const QColor blue(56, 110, 158);

int distance(QColor a, QColor b) {
  return std::max(
      {std::abs(a.red() - b.red()), std::abs(a.green() - b.green()), std::abs(a.blue() - b.blue())});
}

struct Text {
  const char* text;
  int size;
  QFont::Weight weight;
  QColor colour;
  QRectF box;
  QColor ground;
};

/// Expects the first line of each box to look as its text does when it is drawn by itself.
void expectTexts(const QImage& image, const std::vector<Text>& texts) {
  for (const Text& expected : texts) {
    const QSizeF line(expected.box.width(), 1.2 * expected.size);
    const QRect region = QRectF(expected.box.topLeft(), line).toAlignedRect();
    QImage alone(region.size(), QImage::Format_ARGB32_Premultiplied);
    alone.fill(expected.ground);
    QPainter painter(&alone);
    painter.translate(-region.topLeft());
    painter.setFont(resultsFont(expected.size, expected.weight));
    painter.setPen(expected.colour);
    painter.drawText(expected.box, Qt::AlignLeft | Qt::AlignTop, expected.text);
    painter.end();

    int difference = 0;
    for (int y = 0; y < region.height(); ++y) {
      for (int x = 0; x < region.width(); ++x) {
        const QColor drawn = image.pixelColor(region.topLeft() + QPoint(x, y));
        difference = std::max(difference, distance(alone.pixelColor(x, y), drawn));
      }
    }
    EXPECT_LE(difference, 4) << expected.text;
  }
}

TEST(ResultsImage, ShowsEachKindOfAnswerInItsPlaceAndColour) {
  const auto image = QImage::fromData(renderResultsPNG(
      {{"Harbour at Dawn", "B", "B"}, {"Field Recording 12", "B", "A"}, {"Slow", "same", "A"}},  //
      "AAC", 256, true));
  ASSERT_EQ(image.size(), QSize(1000, 810));
  const std::tuple<QPoint, QColor, const char*> points[] = {
      {{50, 43}, page, "above the bar"},
      {{53, 58}, {242, 186, 41}, "bar"},
      {{47, 300}, {234, 236, 238}, "outer half of an edge"},
      {{48, 300}, {239, 241, 242}, "inner half of an edge"},
      {{74, 320}, gold, "first swatch"},
      {{381, 320}, blue, "second swatch"},
      {{900, 520}, page, "between rows"},
      {{674, 424}, Qt::white, "rounded corner of the pill"},
      {{900, 565}, {235, 241, 245}, "second pill"},
  };
  for (const auto& [point, colour, what] : points)
    EXPECT_LE(distance(image.pixelColor(point), colour), 1) << what;

  const std::vector<Text> texts = {
      {"Blind listening results", 38, QFont::Bold, ink, {48, 91, 904, 70}, page},
      {"3 tracks  ·  Lossless vs AAC  ·  256 kbps", 21, QFont::Normal, muted, {48, 148, 904, 70}, page},
      {"Loudness matched", 17, QFont::Normal, muted, {48, 181, 904, 70}, page},
      {"1", 42, QFont::Bold, ink, {70, 246, 100, 70}, Qt::white},
      {"33%", 18, QFont::Normal, muted, {262.6666666666667, 260, 60, 70}, Qt::white},
      {"Lossy preferred", 18, QFont::Medium, ink, {393.6666666666667, 307, 238, 70}, Qt::white},
      {"Harbour at Dawn", 23, QFont::DemiBold, ink, {116, 424, 510, 40}, Qt::white},
      {"A: AAC    ·    B: Lossless", 16, QFont::Normal, muted, {116, 475, 510, 24}, Qt::white},
      {"Lossless preferred", 17, QFont::DemiBold, gold, {688, 430, 226, 26}, {246, 242, 233}},
      {"Selected B", 16, QFont::Normal, muted, {688, 593, 226, 26}, Qt::white},
      {"Couldn’t tell", 17, QFont::DemiBold, muted, {688, 678, 226, 26}, {240, 241, 242}},
      {"No preference", 16, QFont::Normal, muted, {688, 717, 226, 26}, Qt::white}};
  expectTexts(image, texts);
  EXPECT_EQ(shareText(29, 100), "28%");
}

TEST(ResultsImage, SaysHowASingleTrackWasComparedWithoutMatching) {
  const std::vector<Text> texts = {
      {"1 track  ·  Lossless vs Ogg Vorbis  ·  96 kbps", 21, QFont::Normal, muted, {48, 148, 904, 70}, page},
      {"Original relative levels", 17, QFont::Normal, muted, {48, 181, 904, 70}, page}};
  expectTexts(QImage::fromData(renderResultsPNG({{"Song", "same", "B"}}, "Ogg Vorbis", 96, false)), texts);
}

TEST(ResultsImage, RefusesNoAnswersAndTooMany) {
  const auto refusal = [](std::size_t tracks) {
    return test::failureOf<ResultsError>([&] {
      renderResultsPNG(std::vector<TrackResult>(tracks, {"Song", "A", "B"}), "MP3", 8, true);
    });
  };
  EXPECT_EQ(refusal(0), "Zarnet.Results 1: Complete a comparison first.");
  EXPECT_EQ(refusal(239), "Zarnet.Results 1: This comparison is too large to save as one image.");
  EXPECT_EQ(refusal(238), "");
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
