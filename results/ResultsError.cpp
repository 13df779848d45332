#include "results/ResultsError.h"

#include <utility>

namespace zarnet {

ResultsError::ResultsError(std::string sentence)
    : UserError(std::move(sentence)),
      origin(std::string(domain) + " " + std::to_string(code) + ": " + message) {}

}  // namespace zarnet
