#pragma once

#include "system/UserError.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

namespace zarnet {

/// A failure of the platform: a file that cannot be opened, a program that cannot be started, a server that
/// is gone. Its sentence names the file or program and the reason: “take.flac” could not be opened: No such
/// file or directory. It passes every layer unchanged; nobody wraps it in another error.
class PlatformError : public UserError {
 public:
  explicit PlatformError(std::string sentence) : UserError(std::move(sentence)) {}
};

/// The error for a system call that failed on a file or program: “NAME” FAILURE: REASON. `failure` is the
/// middle of the sentence ("could not be opened"), `number` the errno value that gives the reason in plain
/// English, whatever the locale.
PlatformError systemError(const std::filesystem::path& path, std::string_view failure, int number);

}  // namespace zarnet
