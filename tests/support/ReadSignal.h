#pragma once

#include "tests/support/Signals.h"

#include <filesystem>

namespace zarnet::test {

/// All that a file holds, read in pieces that do not divide its length. Fails the test when `length` is not
/// the number of frames that arrive. Raises what the reader raises.
Signal readSignal(const std::filesystem::path& path);

}  // namespace zarnet::test
