#pragma once

#include "system/UserError.h"

#include <string>
#include <utility>

namespace zarnet {

/// Every failure that the system words itself. Its only content is the sentence shown to the user.
class AppError : public UserError {
 public:
  explicit AppError(std::string text) : UserError(std::move(text)) {}
};

}  // namespace zarnet
