#include "media/SampleConversion.h"

#include "media/ByteOrder.h"

namespace zarnet {

namespace {

template <typename Number, bool bigEndian>
Number load(const std::byte* source) {
  return bigEndian ? loadBigEndian<Number>(source) : loadLittleEndian<Number>(source);
}

struct Unsigned8 {
  static constexpr std::uint32_t bytes = 1;
  static float value(const std::byte* source) {
    return static_cast<float>(std::to_integer<int>(*source) - 128) * 0x1p-7f;
  }
};

template <typename Integer, bool bigEndian>
struct Signed {
  static constexpr std::uint32_t bytes = sizeof(Integer);
  static constexpr float scale = 1.0f / static_cast<float>(std::uint64_t{1} << (8 * bytes - 1));
  static float value(const std::byte* source) {
    return static_cast<float>(load<Integer, bigEndian>(source)) * scale;
  }
};

template <bool bigEndian>
struct Signed24 {
  static constexpr std::uint32_t bytes = 3;
  static float value(const std::byte* source) {
    const auto byte = [&](int significance) {
      return std::to_integer<std::uint32_t>(source[bigEndian ? 2 - significance : significance]);
    };
    return static_cast<float>(static_cast<std::int32_t>(byte(0) << 8 | byte(1) << 16 | byte(2) << 24)) *
           0x1p-31f;
  }
};

template <typename Number, bool bigEndian>
struct Floating {
  static constexpr std::uint32_t bytes = sizeof(Number);
  static float value(const std::byte* source) { return static_cast<float>(load<Number, bigEndian>(source)); }
};

template <typename Sample>
void convert(const std::byte* source, std::uint32_t channels, std::int64_t frames, float* const* planes) {
  if (channels == 2) {
    float* __restrict left = planes[0];
    float* __restrict right = planes[1];
    for (std::int64_t i = 0; i < frames; ++i) {
      left[i] = Sample::value(source + 2 * Sample::bytes * i);
      right[i] = Sample::value(source + 2 * Sample::bytes * i + Sample::bytes);
    }
    return;
  }
  const std::int64_t stride = static_cast<std::int64_t>(Sample::bytes) * channels;
  for (std::uint32_t channel = 0; channel < channels; ++channel) {
    float* __restrict plane = planes[channel];
    for (std::int64_t i = 0; i < frames; ++i)
      plane[i] = Sample::value(source + i * stride + channel * Sample::bytes);
  }
}

using Conversion = void (*)(const std::byte*, std::uint32_t, std::int64_t, float* const*);

template <bool bigEndian>
Conversion conversionOf(SampleLayout::Kind kind, std::uint32_t bytes) {
  switch (kind) {
    case SampleLayout::Kind::unsignedInteger:
      return bytes == 1 ? convert<Unsigned8> : nullptr;
    case SampleLayout::Kind::signedInteger:
      switch (bytes) {
        case 1:
          return convert<Signed<std::int8_t, bigEndian>>;
        case 2:
          return convert<Signed<std::int16_t, bigEndian>>;
        case 3:
          return convert<Signed24<bigEndian>>;
        case 4:
          return convert<Signed<std::int32_t, bigEndian>>;
        case 8:
          return convert<Signed<std::int64_t, bigEndian>>;
        default:
          return nullptr;
      }
    case SampleLayout::Kind::floatingPoint:
      return bytes == 4   ? convert<Floating<float, bigEndian>>
             : bytes == 8 ? convert<Floating<double, bigEndian>>
                          : nullptr;
  }
  return nullptr;
}

Conversion conversionOf(const SampleLayout& layout) {
  return layout.bigEndian ? conversionOf<true>(layout.kind, layout.bytes)
                          : conversionOf<false>(layout.kind, layout.bytes);
}

}  // namespace

bool canConvert(const SampleLayout& layout) {
  return conversionOf(layout) != nullptr;
}

void convertSamples(const SampleLayout& layout, const std::byte* source, std::uint32_t channels,
                    std::int64_t frames, float* const* planes) {
  conversionOf(layout)(source, channels, frames, planes);
}

void convertIntegers(const std::int32_t* source, std::uint32_t bits, std::int64_t frames,
                     float* __restrict target) {
  const float scale = 1.0f / static_cast<float>(std::uint64_t{1} << (bits - 1));
  for (std::int64_t i = 0; i < frames; ++i)
    target[i] = static_cast<float>(source[i]) * scale;
}

}  // namespace zarnet
