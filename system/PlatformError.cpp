#include "system/PlatformError.h"

#include "system/DisplayText.h"

#include <string>

#include <string.h>

namespace zarnet {

PlatformError systemError(const std::filesystem::path& path, std::string_view failure, int number) {
  const char* reason = strerrordesc_np(number);
  return PlatformError(quotedName(path) + " " + std::string(failure) + ": " +
                       (reason != nullptr ? reason : "Error " + std::to_string(number)) + ".");
}

}  // namespace zarnet
