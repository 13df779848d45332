#pragma once

#include <cstddef>
#include <cstdint>

namespace zarnet {

/// How one sample of linear PCM is stored.
struct SampleLayout {
  enum class Kind { unsignedInteger, signedInteger, floatingPoint };

  Kind kind = Kind::signedInteger;
  std::uint32_t bytes = 2;
  bool bigEndian = false;
};

/// Whether `convertSamples` knows the layout: unsigned integers of 1 byte, signed ones of 1, 2, 3, 4 and 8,
/// floating point of 4 and 8, in either order of bytes.
bool canConvert(const SampleLayout& layout);

/// Turns interleaved samples into planes of 32-bit floats. The full scale of integers becomes ±1.0: exact up
/// to 24 bits, rounded to nearest beyond; floating point keeps its value, rounded to nearest from 64 bits.
/// Requires: canConvert(layout), channels ≥ 1, `source` holds frames × channels samples at any alignment, and
/// each of `planes` has room for `frames`.
void convertSamples(const SampleLayout& layout, const std::byte* source, std::uint32_t channels,
                    std::int64_t frames, float* const* planes);

/// Turns integers whose full scale takes `bits` bits, 1 to 32, into floats of full scale ±1.0: exact up to 24
/// bits, rounded to nearest beyond.
void convertIntegers(const std::int32_t* source, std::uint32_t bits, std::int64_t frames, float* target);

}  // namespace zarnet
