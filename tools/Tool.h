#pragma once

#include <algorithm>
#include <string>

namespace zarnet {

/// A message as one line of a terminal or a log: line breaks become spaces, those at its end are dropped.
inline std::string oneLine(std::string message) {
  while (!message.empty() && (message.back() == '\n' || message.back() == '\r'))
    message.pop_back();
  std::replace_if(
      message.begin(), message.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
  return message;
}

}  // namespace zarnet
