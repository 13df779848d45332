#include "results/ResultsError.h"

#include <utility>

namespace zarnet {

ResultsError::ResultsError(QString sentence) : message(std::move(sentence)), bytes(message.toStdString()) {}

}  // namespace zarnet
