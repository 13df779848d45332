#include "app/FileDrop.h"
#include "app/WindowFit.h"
#include "tests/support/EventLoop.h"

#include <thread>

#include <gtest/gtest.h>

namespace zarnet {
namespace {

using Files = std::vector<std::filesystem::path>;

/// An item whose location arrives when the test says so.
class LateItem : public ItemProvider {
 public:
  void loadFile(std::function<void(std::optional<std::filesystem::path>)> receiver) override {
    done = std::move(receiver);
  }
  std::function<void(std::optional<std::filesystem::path>)> done;
};

TEST(FileDrop, ReadsTheExactBytesOfTheFilesInAList) {
  QMimeData data;
  data.setData("text/uri-list",
               "# from a file manager\r\nfile:///music/take%201.flac\r\n\r\nhttps://example.org/a.wav\r\n"
               "file:///music/%FF%FE.wav\r\nFILE://localhost/a%25b.wav\r\nfile://elsewhere/a.wav\r\n");
  std::optional<Files> loaded;
  loadFiles(droppedItems(data), [&](Files files) { loaded = std::move(files); });
  ASSERT_TRUE(test::eventually([&] { return loaded.has_value(); }));
  EXPECT_EQ(*loaded, (Files{"/music/take 1.flac", "/music/\xFF\xFE.wav", "/a%b.wav"}));
}

TEST(FileDrop, KeepsTheDroppedOrderWhenItemsAnswerInReverseFromOtherThreads) {
  std::vector<std::shared_ptr<LateItem>> late(3);
  for (auto& item : late)
    item = std::make_shared<LateItem>();
  std::optional<Files> loaded;
  loadFiles({late.begin(), late.end()}, [&](Files files) { loaded = std::move(files); });
  std::jthread([&] { late[2]->done("/2"); }).join();
  std::jthread([&] { late[1]->done(std::nullopt); }).join();
  test::runPendingEvents();
  EXPECT_FALSE(loaded.has_value());
  late[0]->done("/0");
  ASSERT_TRUE(test::eventually([&] { return loaded.has_value(); }));
  EXPECT_EQ(*loaded, (Files{"/0", "/2"}));
}

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
      {"grows downwards from its top edge", {100, 150, 940, 520}, 600, false, {100, 70, 940, 600}},
      {"its bottom stops at the screen's", {100, 20, 940, 520}, 600, false, {100, 8, 940, 600}},
      {"its top comes back onto the screen", {100, 400, 940, 520}, 520, false, {100, 192, 940, 520}},
      {"moved and too high", {100, 100, 940, 520}, 2000, false, {100, 8, 940, 704}},
  };
  for (const auto& [what, current, desiredHeight, centered, expected] : cases) {
    const ScreenRect frame = fittedMainWindowFrame(current, visible, desiredHeight, centered);
    EXPECT_EQ(downwards(frame, 1080), downwards(expected, 1080)) << what;
  }
  EXPECT_EQ(upwards(QRectF(30, 40, 940, 552), 1080).y, 1080 - 40 - 552);
}

}  // namespace
}  // namespace zarnet
