#pragma once

#include "system/DisplayText.h"
#include "system/PlatformError.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <new>
#include <string>
#include <system_error>

namespace zarnet {

// How the programs fail.

/// A message as one line of a terminal or a log: line breaks become spaces, those at its end are dropped.
inline std::string oneLine(std::string message) {
  while (!message.empty() && (message.back() == '\n' || message.back() == '\r'))
    message.pop_back();
  std::replace_if(
      message.begin(), message.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
  return message;
}

/// What a converter does from its start to its end. Returns its exit status; what `work` raises becomes one
/// line on standard error.
template <typename Work>
int runConverter(Work work) {
  // A limit on the size of files then fails the write, which is reported, instead of ending the process.
  std::signal(SIGXFSZ, SIG_IGN);
  try {
    work();
    return EXIT_SUCCESS;
  } catch (const std::bad_alloc& error) {
    std::fprintf(stderr, "%s\n", errorDescription(error).c_str());
    return EXIT_FAILURE;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", oneLine(error.what()).c_str());
    return EXIT_FAILURE;
  }
}

/// Creating the output empties it, so it must not be the input under whatever name. Raises `PlatformError`.
inline void requireTwoFiles(const std::filesystem::path& input, const std::filesystem::path& output) {
  std::error_code ignored;
  if (std::filesystem::equivalent(input, output, ignored))
    throw PlatformError(quotedName(input) + " is both the input and the output.");
}

/// Removes an output that was not completed. What is no regular file (a device, say) stays.
inline void removeUnfinished(const std::filesystem::path& output) {
  std::error_code ignored;
  if (std::filesystem::is_regular_file(output, ignored)) std::filesystem::remove(output, ignored);
}

}  // namespace zarnet
