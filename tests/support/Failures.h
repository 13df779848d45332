#pragma once

#include <string>

namespace zarnet::test {

/// The sentence of the `Error` that an action raises; empty when it raises nothing. Any other error passes.
template <typename Error, typename Action>
std::string failureOf(const Action& action) {
  try {
    action();
    return "";
  } catch (const Error& error) {
    return error.what();
  }
}

}  // namespace zarnet::test
