#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

namespace zarnet {

/// The last `characters` characters of a text file, counted as a user sees them (extended grapheme clusters).
/// The whole text if it is shorter; empty if the file is empty, cannot be read, or is not valid UTF-8
/// anywhere. Uses a bounded amount of memory for a file of any size: a tail longer than 64 KiB is cut at the
/// front.
std::string tailOfTextFile(const std::filesystem::path& path, std::size_t characters);

}  // namespace zarnet
