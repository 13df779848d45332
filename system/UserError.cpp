#include "system/UserError.h"

#include <new>

namespace zarnet {

std::string errorDescription(const std::exception& error) {
  if (const auto* own = dynamic_cast<const UserError*>(&error)) return own->message;
  if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr) return "There is not enough memory.";
  return std::string("Something unexpected went wrong (") + error.what() + ").";
}

}  // namespace zarnet
