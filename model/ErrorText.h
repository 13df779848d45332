#pragma once

#include <QString>
#include <exception>

namespace zarnet {

/// The text that the model shows for a failure it caught: a `ResultsError`'s message unchanged, and for
/// every other error what `errorDescription` says. Never empty.
QString errorText(const std::exception& error);

}  // namespace zarnet
