#include "desktop/InterfaceQueue.h"
#include "desktop/QuitSignals.h"
#include "tests/support/EventLoop.h"

#include <csignal>

#include <gmock/gmock.h>

namespace zarnet {
namespace {

TEST(InterfaceQueue, NeverRunsWorkAtOnceAndKeepsTheOrderThroughANestedEventLoop) {
  InterfaceQueue queue;
  std::vector<int> order;
  queue.post([&] {
    order.push_back(1);
    queue.post([&] { order.push_back(3); });
    test::runPendingEvents();
    order.push_back(4);
  });
  queue.post([&] { order.push_back(2); });
  EXPECT_TRUE(order.empty());
  ASSERT_TRUE(test::eventually([&] { return order.size() == 4; }));
  EXPECT_THAT(order, testing::ElementsAre(1, 2, 3, 4));
}

TEST(QuitSignals, AskToQuitFromTheEventLoopAndGiveTheSignalsBackWhenTheyGo) {
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
    const auto before = std::signal(number, SIG_DFL);
    int asked = 0;
    {
      const QuitSignals signals([&] { ++asked; });
      raise(number);
      EXPECT_EQ(asked, 0) << "the handler itself must do nothing";
      ASSERT_TRUE(test::eventually([&] { return asked == 1; }));
    }
    EXPECT_EQ(std::signal(number, before), SIG_DFL);
  }
}

}  // namespace
}  // namespace zarnet
