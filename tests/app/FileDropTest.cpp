#include "app/FileDrop.h"
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
               "file:///music/%FF%FE.wav\r\nFILE://localhost/a/b.wav\r\nfile:/a%25b.wav\r\n"
               "file://elsewhere/a.wav\r\nfile:///a%00b\r\nfile://\r\n");
  std::optional<Files> loaded;
  loadFiles(droppedItems(data), [&](Files files) { loaded = std::move(files); });
  ASSERT_TRUE(test::eventually([&] { return loaded.has_value(); }));
  EXPECT_EQ(*loaded, (Files{"/music/take 1.flac", "/music/\xFF\xFE.wav", "/a/b.wav", "/a%b.wav"}));
}

TEST(FileDrop, KeepsTheDroppedOrderWhenItemsAnswerInReverseFromOtherThreads) {
  std::vector<std::shared_ptr<LateItem>> late(4);
  for (auto& item : late)
    item = std::make_shared<LateItem>();
  std::optional<Files> loaded;
  loadFiles({late.begin(), late.end()}, [&](Files files) { loaded = std::move(files); });
  std::jthread([&] { late[3]->done("/3"); }).join();
  std::jthread([&] { late[2]->done(std::nullopt); }).join();
  std::jthread([&] { late[1]->done("/1"); }).join();
  test::runPendingEvents();
  EXPECT_FALSE(loaded.has_value());
  late[0]->done("/0");
  ASSERT_TRUE(test::eventually([&] { return loaded.has_value(); }));
  EXPECT_EQ(*loaded, (Files{"/0", "/1", "/3"}));
}

}  // namespace
}  // namespace zarnet
