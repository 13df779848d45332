#include "model/ErrorText.h"

#include "audio/AppError.h"
#include "results/ResultsError.h"

namespace zarnet {

QString errorText(const std::exception& error) {
  if (const auto* own = dynamic_cast<const ResultsError*>(&error)) return own->message;
  return QString::fromStdString(errorDescription(error));
}

}  // namespace zarnet
