#include "output/RealTimePriority.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <memory>

#include <dbus/dbus.h>
#include <sched.h>
#include <sys/resource.h>

namespace zarnet {

namespace {

constexpr int priority = 5;             // of 1 to 99; RealtimeKit grants up to 20
constexpr rlim_t longestRun = 200'000;  // microseconds; the most that RealtimeKit accepts

std::atomic<pid_t> realTimeThread = 0;
static_assert(std::atomic<pid_t>::is_always_lock_free);

struct Release {
  void operator()(DBusConnection* connection) const {
    dbus_connection_close(connection);
    dbus_connection_unref(connection);
  }
  void operator()(DBusMessage* message) const { dbus_message_unref(message); }
};
using Connection = std::unique_ptr<DBusConnection, Release>;
using Message = std::unique_ptr<DBusMessage, Release>;

/// Without a real-time thread the signal says that the user's limit to the processor's time is reached.
extern "C" void dropPriority(int number) {
  const int error = errno;
  const pid_t thread = realTimeThread.exchange(0);
  if (thread == 0) {
    std::signal(number, SIG_DFL);
    std::raise(number);
  } else {
    const sched_param ordinary = {};
    sched_setscheduler(thread, SCHED_OTHER | SCHED_RESET_ON_FORK, &ordinary);
  }
  errno = error;
}

/// The signal comes at half of the limit; at the whole of it the system would end the process.
void limitRuns() {
  struct sigaction action = {};
  action.sa_handler = dropPriority;
  action.sa_flags = SA_RESTART;
  sigaction(SIGXCPU, &action, nullptr);
  rlimit limit = {};
  getrlimit(RLIMIT_RTTIME, &limit);
  limit.rlim_max = std::min(limit.rlim_max, longestRun);
  limit.rlim_cur = limit.rlim_max / 2;
  setrlimit(RLIMIT_RTTIME, &limit);
}

/// Sends the call and waits for the answer; whether there was one that is no error.
bool call(DBusConnection* bus, DBusMessage* message, std::chrono::steady_clock::time_point end) {
  using std::chrono::milliseconds;
  const auto left = std::chrono::duration_cast<milliseconds>(end - std::chrono::steady_clock::now());
  if (message == nullptr || left <= milliseconds::zero()) return false;
  return Message(dbus_connection_send_with_reply_and_block(bus, message, static_cast<int>(left.count()),
                                                           nullptr)) != nullptr;
}

}  // namespace

bool askRealtimeKit(pid_t thread, int wanted, std::chrono::milliseconds limit) {
  const auto end = std::chrono::steady_clock::now() + limit;
  const char* address = std::getenv("DBUS_SYSTEM_BUS_ADDRESS");
  if (address == nullptr) address = "unix:path=/run/dbus/system_bus_socket";
  // What libdbus offers for this waits up to 25 s for a bus that does not answer.
  const Connection bus(dbus_connection_open_private(address, nullptr));
  if (bus == nullptr) return false;
  const Message hello(
      dbus_message_new_method_call(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS, DBUS_INTERFACE_DBUS, "Hello"));
  const Message request(dbus_message_new_method_call("org.freedesktop.RealtimeKit1",
                                                     "/org/freedesktop/RealtimeKit1",
                                                     "org.freedesktop.RealtimeKit1", "MakeThreadRealtime"));
  const auto number = static_cast<dbus_uint64_t>(thread);
  const auto level = static_cast<dbus_uint32_t>(wanted);
  return request != nullptr &&
         dbus_message_append_args(request.get(), DBUS_TYPE_UINT64, &number, DBUS_TYPE_UINT32, &level,
                                  DBUS_TYPE_INVALID) != 0 &&
         call(bus.get(), hello.get(), end) && call(bus.get(), request.get(), end);
}

RealTimePriority::RealTimePriority(pid_t thread, std::chrono::milliseconds limit) {
  limitRuns();
  realTimeThread = thread;
  const sched_param wanted = {priority};
  const bool granted = sched_setscheduler(thread, SCHED_RR | SCHED_RESET_ON_FORK, &wanted) == 0 ||
                       askRealtimeKit(thread, priority, limit);
  if (!granted) realTimeThread = 0;
}

RealTimePriority::~RealTimePriority() {
  realTimeThread = 0;
}

}  // namespace zarnet
