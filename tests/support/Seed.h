#pragma once

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <random>
#include <string>

namespace zarnet::test {

/// The seed of a random test, printed: the number in ZARNET_TEST_SEED, which the test presets fix, else a new
/// one.
inline std::uint32_t testSeed() {
  const char* fixed = std::getenv("ZARNET_TEST_SEED");
  const std::uint32_t seed =
      fixed != nullptr ? static_cast<std::uint32_t>(std::stoul(fixed)) : std::random_device()();
  std::cout << "seed " << seed << std::endl;
  return seed;
}

}  // namespace zarnet::test
