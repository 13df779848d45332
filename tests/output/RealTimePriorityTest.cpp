#include "output/RealTimePriority.h"
#include "tests/support/Programs.h"

#include <atomic>
#include <csignal>
#include <cstdlib>

#include <dbus/dbus.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

namespace zarnet::test {

namespace {

/// A system bus of the test's own, and on it somebody who stands in for RealtimeKit.
class BusWithRealtimeKit {
 public:
  explicit BusWithRealtimeKit(bool answers) : answering(answers) {
    setenv("DBUS_SYSTEM_BUS_ADDRESS", address.c_str(), 1);
    service = std::thread([this] { serve(); });
    EXPECT_TRUE(waitUntil([&] { return ready.load(); }));
  }
  ~BusWithRealtimeKit() {
    done = true;
    service.join();
  }

  std::atomic<std::uint64_t> thread = 0;  // of the latest request
  std::atomic<std::uint32_t> priority = 0;

 private:
  void serve() {
    DBusConnection* bus = nullptr;
    ASSERT_TRUE(waitUntil([&] {
      bus = dbus_connection_open_private(address.c_str(), nullptr);
      return bus != nullptr;
    }));
    dbus_bus_register(bus, nullptr);
    dbus_bus_request_name(bus, "org.freedesktop.RealtimeKit1", 0, nullptr);
    ready = true;
    while (!done) {
      dbus_connection_read_write(bus, 10);
      DBusMessage* call = dbus_connection_pop_message(bus);
      if (call == nullptr) continue;
      if (dbus_message_is_method_call(call, "org.freedesktop.RealtimeKit1", "MakeThreadRealtime")) {
        dbus_uint64_t number = 0;
        dbus_uint32_t level = 0;
        dbus_message_get_args(call, nullptr, DBUS_TYPE_UINT64, &number, DBUS_TYPE_UINT32, &level,
                              DBUS_TYPE_INVALID);
        thread = number;
        priority = level;
        DBusMessage* reply = dbus_message_new_method_return(call);
        if (answering) dbus_connection_send(bus, reply, nullptr);
        dbus_message_unref(reply);
      }
      dbus_message_unref(call);
    }
    dbus_connection_close(bus);
    dbus_connection_unref(bus);
  }

  const bool answering;
  const ScratchFolder folder;
  const std::string address = "unix:path=" + (folder / "bus").string();
  const RunningProgram daemon{{"dbus-daemon", "--session", "--nofork", "--address=" + address}};
  std::atomic<bool> ready = false;
  std::atomic<bool> done = false;
  std::thread service;
};

TEST(RealTimePriority, IsAskedOfRealtimeKitForNoLongerThanTheLimit) {
  constexpr std::chrono::milliseconds limit(300);
  {
    const BusWithRealtimeKit bus(true);
    EXPECT_TRUE(askRealtimeKit(gettid(), 5, std::chrono::seconds(30)));
    EXPECT_EQ(bus.thread, static_cast<std::uint64_t>(gettid()));
    EXPECT_EQ(bus.priority, 5u);
  }
  EXPECT_FALSE(askRealtimeKit(gettid(), 5, limit)) << "without a bus";
  const BusWithRealtimeKit bus(false);
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_FALSE(askRealtimeKit(gettid(), 5, limit)) << "without an answer";
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2));
}

TEST(RealTimePriority, IsLostInsteadOfTheProcessWhenAThreadComputesTooLong) {
  const BusWithRealtimeKit bus(true);
  std::atomic<pid_t> number = 0;
  std::atomic<bool> begun = false;
  std::atomic<bool> ordinary = false;
  std::thread thread([&] {
    number = gettid();
    EXPECT_TRUE(waitUntil([&] { return begun.load(); }));
    // A user who may not have the priority has got the stand-in's word only, and no signal.
    if (sched_getscheduler(0) == SCHED_OTHER) std::raise(SIGXCPU);
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!ordinary && std::chrono::steady_clock::now() < end)
      ordinary = (sched_getscheduler(0) & ~SCHED_RESET_ON_FORK) == SCHED_OTHER;
  });
  while (number == 0)
    std::this_thread::yield();
  {
    const RealTimePriority priority(number, std::chrono::seconds(30));
    rlimit limit = {};
    getrlimit(RLIMIT_RTTIME, &limit);
    EXPECT_EQ(limit.rlim_cur, 100'000u);
    EXPECT_EQ(limit.rlim_max, 200'000u);
    begun = true;
    thread.join();
  }
  EXPECT_TRUE(ordinary);
}

}  // namespace

}  // namespace zarnet::test
