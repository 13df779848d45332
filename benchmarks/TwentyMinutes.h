#pragma once

#include <filesystem>

namespace zarnet::benchmarks {

/// A 20-minute CAF file in the working format, 57,600,000 frames of noise, made at the first call and removed
/// when the program ends.
const std::filesystem::path& twentyMinutes();

}  // namespace zarnet::benchmarks
