#pragma once

#include <chrono>
#include <thread>

namespace zarnet::test {

/// Waits until `condition()` holds and returns true, or false once the limit has passed. The limit is for a
/// condition that never comes true; it is generous enough for a busy machine.
template <typename Condition>
bool waitUntil(Condition condition, std::chrono::seconds limit = std::chrono::seconds(30)) {
  const auto end = std::chrono::steady_clock::now() + limit;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

}  // namespace zarnet::test
