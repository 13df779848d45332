#pragma once

#include <exception>
#include <string>
#include <utility>

namespace zarnet {

/// What every failure that the user may read has in common: a sentence of its own. Catch it, or one of its
/// kinds, and show what `errorDescription` says.
class UserError : public std::exception {
 public:
  const char* what() const noexcept override { return message.c_str(); }

  const std::string message;  ///< a whole sentence in UTF-8, shown unchanged

 protected:
  explicit UserError(std::string sentence) : message(std::move(sentence)) {}
};

/// The text shown for a caught failure: the message of a `UserError` unchanged; for anything else (memory
/// that is not to be had, say) a sentence that says so. This is the one place that turns an exception into
/// text. Never empty.
std::string errorDescription(const std::exception& error);

}  // namespace zarnet
