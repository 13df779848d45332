#pragma once

#include <string>
#include <string_view>

namespace zarnet {

/// A new random UUID in its canonical 36-character upper-case form.
std::string newUUID();

/// Whether a text is a UUID in that form.
bool isUUID(std::string_view text);

}  // namespace zarnet
