#pragma once

#include <cstddef>
#include <filesystem>
#include <vector>

namespace zarnet::benchmarks {

/// Makes `count` tagged FLAC files of three minutes with a picture of 600 × 600 each in the folder, and
/// returns their locations.
std::vector<std::filesystem::path> taggedSongs(const std::filesystem::path& folder, std::size_t count);

}  // namespace zarnet::benchmarks
