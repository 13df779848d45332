#include "results/ResultsImage.h"
#include "results/ResultsLayout.h"
#include "results/TextBlock.h"
#include "tests/support/Failures.h"

#include <QFontMetricsF>
#include <QImageReader>
#include <cmath>
#include <ostream>

#include <gtest/gtest.h>

namespace zarnet {
namespace {

const QColor ink(31, 36, 46);
const QColor muted(102, 110, 122);
const QColor edge(224, 227, 230);
const QColor page(245, 246, 247);
const QColor accent(242, 186, 41);
const QColor gold(161, 120, 31);
const QColor blue(56, 110, 158);
const QColor white(255, 255, 255);

QImage rendered(const std::vector<TrackResult>& answers, const QString& codec = QStringLiteral("AAC"),
                std::int64_t bitrate = 256, bool matched = true) {
  QImageReader::setAllocationLimit(0);
  return QImage::fromData(renderResultsPNG(answers, codec, bitrate, matched), "png");
}

/// Lossless preferred, lossy preferred, no difference heard.
std::vector<TrackResult> oneOfEach() {
  return {{QStringLiteral("Ensemble Nord - Harbour at Dawn"), QStringLiteral("B"), QStringLiteral("B")},
          {QStringLiteral("Field Recording 12"), QStringLiteral("B"), QStringLiteral("A")},
          {QStringLiteral("Slow Movement"), QStringLiteral("same"), QStringLiteral("A")}};
}

int distance(QColor a, QColor b) {
  return std::max(
      {std::abs(a.red() - b.red()), std::abs(a.green() - b.green()), std::abs(a.blue() - b.blue())});
}

void expectColour(const QImage& image, QPoint point, QColor expected, const char* what) {
  const QColor actual = image.pixelColor(point);
  EXPECT_EQ(actual.alpha(), 255) << what;
  EXPECT_LE(distance(actual, expected), 1)
      << what << " at " << point.x() << "," << point.y() << " is " << actual.name().toStdString();
}

struct Text {
  QString text;
  int size;
  QFont::Weight weight;
  QColor colour;
  QRectF box;
  QColor ground;
};

/// Expects the first line of a box to look as the text does when it is drawn by itself.
void expectText(const QImage& image, const Text& expected) {
  const QFont font = resultsFont(expected.size, expected.weight);
  QRectF line = expected.box;
  line.setHeight(QFontMetricsF(font).height());
  const QRect region = line.toAlignedRect();
  QImage alone(region.size(), QImage::Format_ARGB32_Premultiplied);
  alone.fill(expected.ground);
  QPainter painter(&alone);
  painter.translate(-region.topLeft());
  painter.setFont(font);
  painter.setPen(expected.colour);
  painter.drawText(expected.box, Qt::AlignLeft | Qt::AlignTop, expected.text);
  painter.end();

  int inked = 0;
  int difference = 0;
  for (int y = 0; y < region.height(); ++y) {
    for (int x = 0; x < region.width(); ++x) {
      const QColor wanted = alone.pixelColor(x, y);
      if (distance(wanted, expected.ground) > 0) ++inked;
      difference = std::max(difference, distance(wanted, image.pixelColor(region.topLeft() + QPoint(x, y))));
    }
  }
  ASSERT_GT(inked, 0) << expected.text.toStdString();
  EXPECT_LE(difference, 4) << expected.text.toStdString();
}

TEST(ResultsImage, HasTheGeometryAndColoursOfItsParts) {
  const QImage image = rendered(oneOfEach());
  ASSERT_EQ(image.size(), QSize(1000, 810));
  const struct {
    QPoint point;
    QColor colour;
    const char* what;
  } points[] = {
      {{999, 809}, page, "last corner"},
      {{50, 43}, page, "above the bar"},
      {{53, 58}, accent, "bar"},
      {{54, 58}, page, "right of the bar"},
      {{50, 72}, page, "below the bar"},
      {{46, 300}, page, "left of the first summary card"},
      {{50, 300}, white, "first summary card"},
      {{346, 300}, page, "between the first two summary cards"},
      {{950, 300}, white, "right end of the third summary card"},
      {{953, 300}, page, "right of the summary cards"},
      {{200, 357}, page, "below the summary cards"},
      {{74, 320}, gold, "first swatch"},
      {{381, 320}, blue, "second swatch"},
      {{687, 320}, muted, "third swatch"},
      {{50, 460}, white, "first row"},
      {{900, 512}, white, "bottom of the first row"},
      {{900, 520}, page, "between rows"},
      {{900, 764}, page, "below the third row"},
      {{674, 424}, white, "rounded corner of the pill"},
      {{674, 441}, QColor(246, 242, 233), "left end of the first pill"},
      {{928, 441}, white, "right of the first pill"},
      {{900, 458}, white, "below the first pill"},
      {{900, 565}, QColor(235, 241, 245), "second pill"},
      {{900, 689}, QColor(240, 241, 242), "third pill"},
  };
  for (const auto& [point, colour, what] : points)
    expectColour(image, point, colour, what);

  const auto halfOver = [](QColor ground) {
    return QColor((edge.red() + ground.red()) / 2, (edge.green() + ground.green()) / 2,
                  (edge.blue() + ground.blue()) / 2);
  };
  for (const int y : {300, 460}) {
    expectColour(image, {47, y}, halfOver(page), "outer half of an edge");
    expectColour(image, {48, y}, halfOver(white), "inner half of an edge");
    expectColour(image, {951, y}, halfOver(white), "inner half of the right edge");
    expectColour(image, {952, y}, halfOver(page), "outer half of the right edge");
  }
}

TEST(ResultsImage, SaysWhatWasHeard) {
  const QImage image = rendered(oneOfEach());
  const double second = 48 + 306.6666666666667;
  const double share = 290.6666666666667 - 76;
  const Text texts[] = {
      {"Zarnet", 19, QFont::Bold, muted, {64, 45, 904, 70}, page},
      {"Blind listening results", 38, QFont::Bold, ink, {48, 91, 904, 70}, page},
      {"3 tracks  ·  Lossless vs AAC  ·  256 kbps", 21, QFont::Normal, muted, {48, 148, 904, 70}, page},
      {"Loudness matched", 17, QFont::Normal, muted, {48, 181, 904, 70}, page},
      {"1", 42, QFont::Bold, ink, {70, 246, 100, 70}, white},
      {"33%", 18, QFont::Normal, muted, {48 + share, 260, 60, 70}, white},
      {"Lossless preferred", 18, QFont::Medium, ink, {87, 307, 238, 70}, white},
      {"Lossy preferred", 18, QFont::Medium, ink, {second + 39, 307, 238, 70}, white},
      {"TRACK RESULTS", 13, QFont::DemiBold, muted, {48, 378, 904, 20}, page},
      {"Ensemble Nord - Harbour at Dawn", 23, QFont::DemiBold, ink, {116, 424, 510, 40}, white},
      {"A: AAC    ·    B: Lossless", 16, QFont::Normal, muted, {116, 475, 510, 24}, white},
      {"Lossless preferred", 17, QFont::DemiBold, gold, {688, 430, 226, 26}, QColor(246, 242, 233)},
      {"Selected B", 16, QFont::Normal, muted, {688, 469, 226, 26}, white},
      {"Field Recording 12", 23, QFont::DemiBold, ink, {116, 548, 510, 40}, white},
      {"Lossy preferred", 17, QFont::DemiBold, blue, {688, 554, 226, 26}, QColor(235, 241, 245)},
      {"Selected B", 16, QFont::Normal, muted, {688, 593, 226, 26}, white},
      {"Couldn’t tell", 17, QFont::DemiBold, muted, {688, 678, 226, 26}, QColor(240, 241, 242)},
      {"No preference", 16, QFont::Normal, muted, {688, 717, 226, 26}, white},
  };
  for (const Text& text : texts)
    expectText(image, text);
}

TEST(ResultsImage, CountsOneTrackInTheSingularAndTellsUnmatchedLevels) {
  const QImage image = rendered({{QStringLiteral("Song"), QStringLiteral("same"), QStringLiteral("B")}},
                                QStringLiteral("Ogg Vorbis"), 96, false);
  EXPECT_EQ(image.size(), QSize(1000, 562));
  const double third = 48 + 2 * 306.6666666666667;
  const Text texts[] = {
      {"1 track  ·  Lossless vs Ogg Vorbis  ·  96 kbps", 21, QFont::Normal, muted, {48, 148, 904, 70}, page},
      {"Original relative levels", 17, QFont::Normal, muted, {48, 181, 904, 70}, page},
      {"0", 42, QFont::Bold, ink, {70, 246, 100, 70}, white},
      {"1", 42, QFont::Bold, ink, {third + 22, 246, 100, 70}, white},
      {"100%", 18, QFont::Normal, muted, {third + 290.6666666666667 - 76, 260, 60, 70}, white},
  };
  for (const Text& text : texts)
    expectText(image, text);
}

TEST(ResultsImage, RefusesNoAnswersAndTooMany) {
  const TrackResult track{QStringLiteral("Song"), QStringLiteral("A"), QStringLiteral("B")};
  const struct {
    std::size_t count;
    const char* message;
  } cases[] = {{0, "Complete a comparison first."},
               {239, "This comparison is too large to save as one image."}};
  for (const auto& [count, message] : cases) {
    const auto render = [&, tracks = count] {
      renderResultsPNG(std::vector(tracks, track), QStringLiteral("MP3"), 8, true);
    };
    EXPECT_EQ(test::failureOf<ResultsError>(render), message);
  }
  EXPECT_EQ(rendered(std::vector(238, track)).height(), 29950);
}

TEST(ResultsImage, CutsSharesInsteadOfRounding) {
  EXPECT_EQ(shareText(2, 3), "66%");
  EXPECT_EQ(shareText(199, 200), "99%");
  EXPECT_EQ(shareText(29, 100), "28%");
  EXPECT_EQ(shareText(58, 100), "57%");
}

}  // namespace
}  // namespace zarnet
