#include "app/WindowFit.h"

#include <gtest/gtest.h>

namespace zarnet {

TEST(FittedMainWindowFrame, CentresOrKeepsTheTopEdgeWithinTheScreen) {
  const ScreenRect visible = {8, 8, 1264, 704};
  const struct {
    const char* what;
    ScreenRect current;
    double desiredHeight;
    bool centered;
    ScreenRect expected;
  } cases[] = {
      {"centred", {0, 0, 940, 520}, 600, true, {170, 60, 940, 600}},
      {"centred, cut to the screen", {0, 0, 940, 520}, 900, true, {170, 8, 940, 704}},
      {"grows downwards from its top edge", {100, 150, 940, 520}, 600, false, {100, 70, 940, 600}},
      {"shrinks upwards to its top edge", {100, 150, 940, 520}, 400, false, {100, 270, 940, 400}},
      {"its bottom stops at the screen's", {100, 20, 940, 520}, 600, false, {100, 8, 940, 600}},
      {"its top comes back onto the screen", {100, 400, 940, 520}, 520, false, {100, 192, 940, 520}},
      {"moved and too high", {100, 100, 940, 520}, 2000, false, {100, 8, 940, 704}},
  };
  for (const auto& [what, current, desiredHeight, centered, expected] : cases) {
    const ScreenRect frame = fittedMainWindowFrame(current, visible, desiredHeight, centered);
    EXPECT_EQ(downwards(frame, 1080), downwards(expected, 1080)) << what;
  }
  const QRectF window(30, 40, 940, 552);
  EXPECT_EQ(upwards(window, 1080).y, 1080 - 40 - 552);
  EXPECT_EQ(downwards(upwards(window, 1080), 1080), window);
}

}  // namespace zarnet
