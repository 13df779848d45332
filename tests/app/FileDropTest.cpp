#include "app/FileDrop.h"
#include "tests/support/EventLoop.h"

#include <QByteArray>
#include <optional>
#include <string>
#include <thread>

#include <gtest/gtest.h>

namespace zarnet {
namespace {

/// An item whose location arrives when the test says so.
class LateItem : public ItemProvider {
 public:
  void loadFile(std::function<void(std::optional<std::filesystem::path>)> receiver) override {
    done = std::move(receiver);
  }
  std::function<void(std::optional<std::filesystem::path>)> done;
};

}  // namespace

TEST(FileDrop, ReadsTheExactBytesOfAFileAddress) {
  struct Case {
    QByteArray address;
    std::optional<std::string> path;
  };
  const Case cases[] = {
      {"file:///music/take%201.flac", "/music/take 1.flac"},
      {"file:///music/%FF%FE.wav", "/music/\xFF\xFE.wav"},
      {"FILE://localhost/a/b.wav", "/a/b.wav"},
      {"file:/a%25b.wav", "/a%b.wav"},
      {"file://elsewhere/a.wav", std::nullopt},
      {"https://example.org/a.wav", std::nullopt},
      {"file:///a%00b", std::nullopt},
      {"file://", std::nullopt},
      {"", std::nullopt},
  };
  for (const Case& c : cases) {
    const auto file = fileFromAddress(c.address);
    EXPECT_EQ(file ? std::optional(file->string()) : std::nullopt, c.path) << c.address.toStdString();
  }
}

TEST(FileDrop, SkipsCommentsAndKeepsTheOrderOfTheList) {
  QMimeData data;
  data.setData("text/uri-list",
               "# from a file manager\r\nfile:///b.wav\r\n\r\nhttps://x/\r\nfile:///a.wav\r\n");
  const auto items = droppedItems(data);
  ASSERT_EQ(items.size(), 3u);
  std::optional<std::vector<std::filesystem::path>> loaded;
  loadFiles(items, [&](std::vector<std::filesystem::path> files) { loaded = std::move(files); });
  ASSERT_TRUE(test::eventually([&] { return loaded.has_value(); }));
  EXPECT_EQ(*loaded, (std::vector<std::filesystem::path>{"/b.wav", "/a.wav"}));
}

TEST(FileDrop, KeepsTheDroppedOrderWhenItemsAnswerInReverseFromOtherThreads) {
  std::vector<std::shared_ptr<LateItem>> late;
  std::vector<std::shared_ptr<ItemProvider>> items;
  for (int i = 0; i < 4; ++i) {
    late.push_back(std::make_shared<LateItem>());
    items.push_back(late.back());
  }
  std::optional<std::vector<std::filesystem::path>> loaded;
  loadFiles(items, [&](std::vector<std::filesystem::path> files) { loaded = std::move(files); });
  std::jthread([&] { late[3]->done("/3"); }).join();
  std::jthread([&] { late[2]->done(std::nullopt); }).join();
  std::jthread([&] { late[1]->done("/1"); }).join();
  test::runPendingEvents();
  EXPECT_FALSE(loaded.has_value());
  late[0]->done("/0");
  ASSERT_TRUE(test::eventually([&] { return loaded.has_value(); }));
  EXPECT_EQ(*loaded, (std::vector<std::filesystem::path>{"/0", "/1", "/3"}));
}

}  // namespace zarnet
