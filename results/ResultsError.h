#pragma once

#include "system/UserError.h"

#include <string>

namespace zarnet {

/// Why there is no results image. Where nobody shows its message, `what()` tells where it comes from as well:
/// "Zarnet.Results 1: Complete a comparison first.".
class ResultsError : public UserError {
 public:
  static constexpr const char* domain = "Zarnet.Results";
  static constexpr int code = 1;

  explicit ResultsError(std::string sentence);

  const char* what() const noexcept override { return origin.c_str(); }

 private:
  const std::string origin;
};

}  // namespace zarnet
