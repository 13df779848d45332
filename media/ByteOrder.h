#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>
#include <string>

namespace zarnet {

static_assert(std::endian::native == std::endian::little, "numbers are stored as this machine holds them");

/// The little-endian integer or IEEE number that starts at `source`, at any alignment.
template <typename Number>
Number loadLittleEndian(const void* source) {
  Number number;
  std::memcpy(&number, source, sizeof number);
  return number;
}

/// The big-endian integer or IEEE number that starts at `source`, at any alignment.
template <typename Number>
Number loadBigEndian(const void* source) {
  std::byte bytes[sizeof(Number)];
  std::memcpy(bytes, source, sizeof bytes);
  std::reverse(bytes, bytes + sizeof bytes);
  return loadLittleEndian<Number>(bytes);
}

template <typename Number>
void appendLittleEndian(std::string& bytes, Number value) {
  char raw[sizeof value];
  std::memcpy(raw, &value, sizeof raw);
  bytes.append(raw, sizeof raw);
}

template <typename Number>
void appendBigEndian(std::string& bytes, Number value) {
  appendLittleEndian(bytes, loadBigEndian<Number>(&value));
}

}  // namespace zarnet
