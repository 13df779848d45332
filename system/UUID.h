#pragma once

#include <string>

namespace zarnet {

/// A new random UUID in its canonical 36-character upper-case form.
std::string newUUID();

}  // namespace zarnet
