#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace zarnet::test {

inline std::string bigEndian(std::uint64_t number, int bytes) {
  std::string result;
  for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
    result += static_cast<char>(number >> shift & 0xFF);
  return result;
}

inline std::string littleEndian(std::uint64_t number, int bytes) {
  const std::string reversed = bigEndian(number, bytes);
  return {reversed.rbegin(), reversed.rend()};
}

/// A chunk of a RIFF file, padded to an even size.
inline std::string riffChunk(std::string_view id, const std::string& content) {
  return std::string(id) + littleEndian(content.size(), 4) + content + std::string(content.size() % 2, '\0');
}

}  // namespace zarnet::test
