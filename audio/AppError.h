#pragma once

#include <exception>
#include <string>
#include <utility>

namespace zarnet {

/// Every failure that the system words itself. Its only content is the sentence shown to the user.
class AppError : public std::exception {
 public:
  explicit AppError(std::string text) : message(std::move(text)) {}

  const char* what() const noexcept override { return message.c_str(); }

  const std::string message;  ///< a whole sentence in UTF-8, shown unchanged
};

/// The text shown for a caught failure: an `AppError`'s message and a `PlatformError`'s sentence unchanged;
/// for anything else (memory that is not to be had, say) a sentence that says so. This is the one place that
/// turns an exception into text. Never empty.
std::string errorDescription(const std::exception& error);

}  // namespace zarnet
