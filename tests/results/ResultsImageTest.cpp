#include "results/ResultsImage.h"
#include "results/ResultsLayout.h"
#include "results/TextBlock.h"
#include "tests/support/Failures.h"

#include <QFontMetricsF>
#include <QImageReader>
#include <cmath>

#include <gtest/gtest.h>

namespace zarnet {
namespace {

const QColor ink(31, 36, 46);
const QColor muted(102, 110, 122);
const QColor page(245, 246, 247);
const QColor gold(161, 120, 31);
const QColor blue(56, 110, 158);
const QColor white(255, 255, 255);
constexpr double cardStep = 306.6666666666667;

QImage rendered(const std::vector<TrackResult>& answers, const char* codec, std::int64_t bitrate,
                bool matched) {
  QImageReader::setAllocationLimit(0);
  return QImage::fromData(renderResultsPNG(answers, codec, bitrate, matched), "png");
}

/// Lossless preferred, lossy preferred, no difference heard.
QImage oneOfEach() {
  return rendered({{"Harbour at Dawn", "B", "B"}, {"Field Recording 12", "B", "A"}, {"Slow", "same", "A"}},
                  "AAC", 256, true);
}

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

    bool inked = false;
    int difference = 0;
    for (int y = 0; y < region.height(); ++y) {
      for (int x = 0; x < region.width(); ++x) {
        const QColor drawn = image.pixelColor(region.topLeft() + QPoint(x, y));
        difference = std::max(difference, distance(alone.pixelColor(x, y), drawn));
        inked = inked || distance(drawn, expected.ground) > 50;
      }
    }
    EXPECT_LE(difference, 4) << expected.text;
    EXPECT_TRUE(inked) << expected.text;
  }
}

TEST(ResultsImage, HasTheGeometryAndColoursOfItsParts) {
  const QImage image = oneOfEach();
  ASSERT_EQ(image.size(), QSize(1000, 810));
  EXPECT_EQ(image.pixelColor(0, 0).alpha(), 255);
  const std::tuple<QPoint, QColor, const char*> points[] = {
      {{50, 43}, page, "above the bar"},
      {{53, 58}, {242, 186, 41}, "bar"},
      {{54, 58}, page, "right of the bar"},
      {{47, 300}, {234, 236, 238}, "outer half of an edge"},
      {{48, 300}, {239, 241, 242}, "inner half of an edge"},
      {{346, 300}, page, "between the first two summary cards"},
      {{953, 300}, page, "right of the summary cards"},
      {{74, 320}, gold, "first swatch"},
      {{381, 320}, blue, "second swatch"},
      {{900, 512}, white, "bottom of the first row"},
      {{900, 520}, page, "between rows"},
      {{674, 424}, white, "rounded corner of the pill"},
      {{674, 441}, {246, 242, 233}, "left end of the first pill"},
      {{900, 458}, white, "below the first pill"},
      {{900, 565}, {235, 241, 245}, "second pill"},
  };
  for (const auto& [point, colour, what] : points)
    EXPECT_LE(distance(image.pixelColor(point), colour), 1) << what;
}

TEST(ResultsImage, SaysWhatWasHeard) {
  const std::vector<Text> many = {
      {"Blind listening results", 38, QFont::Bold, ink, {48, 91, 904, 70}, page},
      {"3 tracks  ·  Lossless vs AAC  ·  256 kbps", 21, QFont::Normal, muted, {48, 148, 904, 70}, page},
      {"Loudness matched", 17, QFont::Normal, muted, {48, 181, 904, 70}, page},
      {"1", 42, QFont::Bold, ink, {70, 246, 100, 70}, white},
      {"33%", 18, QFont::Normal, muted, {262.6666666666667, 260, 60, 70}, white},
      {"Lossy preferred", 18, QFont::Medium, ink, {87 + cardStep, 307, 238, 70}, white},
      {"TRACK RESULTS", 13, QFont::DemiBold, muted, {48, 378, 904, 20}, page},
      {"Harbour at Dawn", 23, QFont::DemiBold, ink, {116, 424, 510, 40}, white},
      {"A: AAC    ·    B: Lossless", 16, QFont::Normal, muted, {116, 475, 510, 24}, white},
      {"Lossless preferred", 17, QFont::DemiBold, gold, {688, 430, 226, 26}, {246, 242, 233}},
      {"Lossy preferred", 17, QFont::DemiBold, blue, {688, 554, 226, 26}, {235, 241, 245}},
      {"Selected B", 16, QFont::Normal, muted, {688, 593, 226, 26}, white},
      {"Couldn’t tell", 17, QFont::DemiBold, muted, {688, 678, 226, 26}, {240, 241, 242}},
      {"No preference", 16, QFont::Normal, muted, {688, 717, 226, 26}, white}};
  expectTexts(oneOfEach(), many);
  const std::vector<Text> one = {
      {"1 track  ·  Lossless vs Ogg Vorbis  ·  96 kbps", 21, QFont::Normal, muted, {48, 148, 904, 70}, page},
      {"Original relative levels", 17, QFont::Normal, muted, {48, 181, 904, 70}, page},
      {"0", 42, QFont::Bold, ink, {70, 246, 100, 70}, white},
      {"100%", 18, QFont::Normal, muted, {262.6666666666667 + 2 * cardStep, 260, 60, 70}, white}};
  expectTexts(rendered({{"Song", "same", "B"}}, "Ogg Vorbis", 96, false), one);
  EXPECT_EQ(shareText(2, 3), "66%");
  EXPECT_EQ(shareText(29, 100), "28%");
}

TEST(ResultsImage, RefusesNoAnswersAndTooMany) {
  const auto refusal = [](std::size_t tracks) {
    return test::failureOf<ResultsError>([&] {
      renderResultsPNG(std::vector<TrackResult>(tracks, {"Song", "A", "B"}), "MP3", 8, true);
    });
  };
  EXPECT_EQ(refusal(0), "Complete a comparison first.");
  EXPECT_EQ(refusal(239), "This comparison is too large to save as one image.");
  EXPECT_EQ(refusal(238), "");
}

}  // namespace
}  // namespace zarnet
