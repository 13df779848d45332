#include "results/ResultsImage.h"

#include "results/PNG.h"
#include "results/Preference.h"
#include "results/ResultsLayout.h"
#include "results/TextBlock.h"

#include <QImage>
#include <QPainter>
#include <array>
#include <deque>
#include <new>

namespace zarnet {

namespace {

const QColor ink = QColor::fromRgbF(0.12f, 0.14f, 0.18f);
const QColor muted = QColor::fromRgbF(0.40f, 0.43f, 0.48f);
const QColor line = QColor::fromRgbF(0.88f, 0.89f, 0.90f);
const QColor page = QColor::fromRgbF(0.96f, 0.965f, 0.97f);
const QColor accent = QColor::fromRgbF(0.95f, 0.73f, 0.16f);
const QColor white = QColor::fromRgbF(1, 1, 1);
const QColor gold = QColor::fromRgbF(0.63f, 0.47f, 0.12f);
const QColor blue = QColor::fromRgbF(0.22f, 0.43f, 0.62f);

constexpr std::array preferences = {Preference::lossless, Preference::lossy, Preference::none};

constexpr int imageWidth = 1000;
constexpr double margin = 48;
constexpr double contentWidth = 904;
constexpr double cardRadius = 18;

QColor colourOf(Preference preference) {
  switch (preference) {
    case Preference::lossless:
      return gold;
    case Preference::lossy:
      return blue;
    case Preference::none:
      break;
  }
  return muted;
}

void fillRounded(QPainter& painter, const QRectF& box, double radius, const QColor& colour) {
  painter.setPen(Qt::NoPen);
  painter.setBrush(colour);
  painter.drawRoundedRect(box, radius, radius);
}

void drawCard(QPainter& painter, const QRectF& box) {
  fillRounded(painter, box, cardRadius, white);
  painter.setPen(QPen(line, 1));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(box, cardRadius, cardRadius);
}

void drawText(QPainter& painter, const QString& text, int size, QFont::Weight weight, const QColor& colour,
              const QRectF& box) {
  const TextBlock block(text, resultsFont(size, weight), box.width(), box.height());
  block.draw(painter, box.topLeft(), colour);
}

void drawHeader(QPainter& painter, std::size_t count, const QString& codec, std::int64_t bitrate,
                bool matched) {
  fillRounded(painter, {margin, 44, 6, 28}, 3, accent);
  drawText(painter, QStringLiteral("Zarnet"), 19, QFont::Bold, muted, {64, 45, contentWidth, 70});
  drawText(painter, QStringLiteral("Blind listening results"), 38, QFont::Bold, ink,
           {margin, 91, contentWidth, 70});
  const QString subtitle =
      QStringLiteral("%1 %2  ·  Lossless vs %3  ·  %4 kbps")
          .arg(QString::number(count), count == 1 ? QStringLiteral("track") : QStringLiteral("tracks"), codec,
               QString::number(bitrate));
  drawText(painter, subtitle, 21, QFont::Normal, muted, {margin, 148, contentWidth, 70});
  drawText(painter, matched ? QStringLiteral("Loudness matched") : QStringLiteral("Original relative levels"),
           17, QFont::Normal, muted, {margin, 181, contentWidth, 70});
}

void drawSummary(QPainter& painter, const std::vector<TrackResult>& answers) {
  constexpr double cardWidth = 290.6666666666667;
  constexpr double cardStep = 306.6666666666667;
  std::array<int, preferences.size()> counts = {};
  for (const TrackResult& answer : answers)
    ++counts[static_cast<std::size_t>(preferenceOf(answer.choice, answer.lossless))];
  for (const Preference preference : preferences) {
    const auto k = static_cast<std::size_t>(preference);
    const double x = margin + static_cast<double>(k) * cardStep;
    drawCard(painter, {x, 230, cardWidth, 126});
    drawText(painter, QString::number(counts[k]), 42, QFont::Bold, ink, {x + 22, 246, 100, 70});
    drawText(painter, shareText(counts[k], static_cast<int>(answers.size())), 18, QFont::Normal, muted,
             {x + cardWidth - 76, 260, 60, 70});
    fillRounded(painter, {x + 22, 316, 8, 8}, 4, colourOf(preference));
    drawText(painter, preferenceText(preference), 18, QFont::Medium, ink,
             {x + 39, 307, 238.66666666666669, 70});
  }
}

void drawRow(QPainter& painter, std::size_t number, const TrackResult& answer, const QString& codec,
             const TextBlock& title, const ResultsRow& row) {
  const double y = row.y;
  drawCard(painter, {margin, y, contentWidth, row.height});
  drawText(painter, QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0')), 16, QFont::Medium, muted,
           {68, y + 25, 40, 70});
  title.draw(painter, {116, y + 22}, ink);

  const auto sideName = [&](const QString& side) {
    return answer.lossless == side ? QStringLiteral("Lossless") : codec;
  };
  const QString sides = QStringLiteral("A: ") + sideName(QStringLiteral("A")) +
                        QStringLiteral("    ·    B: ") + sideName(QStringLiteral("B"));
  drawText(painter, sides, 16, QFont::Normal, muted, {116, y + row.height - 39, titleWidth, 24});

  const Preference preference = preferenceOf(answer.choice, answer.lossless);
  const QColor colour = colourOf(preference);
  QColor pill = colour;
  pill.setAlphaF(0.1f);
  fillRounded(painter, {674, y + 22, 254, 34}, 9, pill);
  drawText(painter, preferenceText(preference), 17, QFont::DemiBold, colour, {688, y + 28, 226, 26});
  drawText(painter,
           preference == Preference::none ? QStringLiteral("No preference")
                                          : QStringLiteral("Selected ") + answer.choice,
           16, QFont::Normal, muted, {688, y + 67, 226, 26});
}

/// Of all titles: more than twice of what fits on the highest image in the narrowest letters.
constexpr qsizetype mostCharacters = 250'000;

ResultsError notCreated() {
  return ResultsError("Could not create the results image.");
}

}  // namespace

QByteArray renderResultsPNG(const std::vector<TrackResult>& answers, const QString& codec,
                            std::int64_t bitrate, bool matched) {
  if (answers.empty()) throw ResultsError("Complete a comparison first.");
  // Before it is laid out, which takes seconds for a million characters.
  qsizetype characters = 0;
  for (const TrackResult& answer : answers)
    characters += answer.title.size();
  if (characters > mostCharacters) throw tooLarge();

  const QFont titleFont = resultsFont(23, QFont::DemiBold);
  std::deque<TextBlock> titles;
  std::vector<double> titleHeights;
  for (const TrackResult& answer : answers) {
    titles.emplace_back(answer.title, titleFont, titleWidth, tooHigh);
    titleHeights.push_back(titles.back().height());
  }
  const ResultsLayout layout = resultsLayout(titleHeights);

  QImage image(imageWidth, layout.pixelHeight(), QImage::Format_RGBA8888_Premultiplied);
  if (image.isNull()) throw notCreated();
  image.fill(page);
  QPainter painter;
  if (!painter.begin(&image)) throw notCreated();
  painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
  // The coordinates hang from a point `height` above the bottom edge: a fraction of a pixel that the bitmap
  // has no room for is cut off at the top.
  painter.translate(0, layout.pixelHeight() - layout.height);
  drawHeader(painter, answers.size(), codec, bitrate, matched);
  drawSummary(painter, answers);
  drawText(painter, QStringLiteral("TRACK RESULTS"), 13, QFont::DemiBold, muted,
           {margin, 378, contentWidth, 20});
  for (std::size_t i = 0; i < answers.size(); ++i)
    drawRow(painter, i + 1, answers[i], codec, titles[i], layout.rows[i]);
  painter.end();

  // Every pixel is opaque, so that its premultiplied samples are the plain ones.
  image.reinterpretAsFormat(QImage::Format_RGBA8888);
  try {
    return encodedPNG(image);
  } catch (const std::bad_alloc&) {
    throw notCreated();
  }
}

}  // namespace zarnet
