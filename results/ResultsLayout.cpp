#include "results/ResultsLayout.h"

#include <algorithm>

namespace zarnet {

namespace {
constexpr double firstRow = 402;
constexpr double bottomMargin = 48;
constexpr double rowGap = 12;
constexpr double aroundTitle = 76;
constexpr double leastRow = 112;
}  // namespace

ResultsError tooLarge() {
  return ResultsError("This comparison is too large to save as one image.");
}

ResultsLayout resultsLayout(const std::vector<double>& titleHeights) {
  ResultsLayout layout{{}, firstRow + bottomMargin + rowGap * (static_cast<double>(titleHeights.size()) - 1)};
  layout.rows.reserve(titleHeights.size());
  double y = firstRow;
  for (const double title : titleHeights) {
    const double height = std::max(title + aroundTitle, leastRow);
    layout.rows.push_back({y, height});
    layout.height += height;
    y += height + rowGap;
  }
  if (layout.height >= tooHigh) throw tooLarge();
  return layout;
}

QString shareText(int count, int total) {
  const double share = static_cast<double>(count) / static_cast<double>(total) * 100;
  return QString::number(static_cast<int>(share)) + u'%';
}

}  // namespace zarnet
