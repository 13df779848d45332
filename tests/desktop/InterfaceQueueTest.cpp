#include "desktop/InterfaceQueue.h"
#include "tests/support/EventLoop.h"

#include <vector>

#include <gmock/gmock.h>

namespace zarnet {
namespace {

using test::eventually;
using test::runPendingEvents;
using testing::ElementsAre;

TEST(InterfaceQueue, NeverRunsWorkAtOnceAndKeepsTheOrderThroughANestedEventLoop) {
  InterfaceQueue queue;
  std::vector<int> order;
  queue.post([&] {
    order.push_back(1);
    queue.post([&] { order.push_back(4); });
    runPendingEvents();
    order.push_back(5);
  });
  queue.post([&] { order.push_back(2); });
  queue.post([&] { order.push_back(3); });
  EXPECT_TRUE(order.empty());
  ASSERT_TRUE(eventually([&] { return order.size() == 5; }));
  EXPECT_THAT(order, ElementsAre(1, 2, 3, 4, 5));
}

}  // namespace
}  // namespace zarnet
