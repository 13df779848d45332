#pragma once

#include <chrono>
#include <functional>

namespace zarnet::test {

/// Runs the event loop of this thread until the condition holds; false when it still does not after `limit`.
/// Requires: an application object.
bool eventually(const std::function<bool()>& condition,
                std::chrono::seconds limit = std::chrono::seconds(60));

/// Runs everything that the event loop has waiting.
void runPendingEvents();

}  // namespace zarnet::test
