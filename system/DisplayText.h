#pragma once

#include <filesystem>
#include <string>

namespace zarnet {

/// The bytes of a path as text to be shown: valid UTF-8 stays as it is, every byte that is part of no
/// character becomes U+FFFD. An empty path gives an empty text. Never raises for any path.
std::string displayText(const std::filesystem::path& path);

/// The last component of a path between typographic quotes, for sentences that name a file: “take.flac”.
std::string quotedName(const std::filesystem::path& path);

/// Formats a number as printf's "%g" does in the C locale: six significant digits, no trailing zeros, a full
/// stop as the decimal separator whatever the process's locale. Not-a-number and infinities read as printf
/// has them.
std::string formatG(double value);

}  // namespace zarnet
