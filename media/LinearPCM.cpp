#include "media/LinearPCM.h"

#include "media/ByteOrder.h"
#include "media/StreamDescription.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace zarnet {

namespace {

/// A file with more chunks than this before its samples is not meant to be read.
constexpr int maximumChunks = 10'000;
constexpr std::uint32_t maximumChannels = 65'535;

template <std::size_t count>
using Bytes = std::array<std::byte, count>;

/// Fills `bytes` from the file; false when the file is too short.
template <std::size_t count>
bool readAt(const FileHandle& file, std::int64_t offset, Bytes<count>& bytes) {
  return file.readAt(offset, bytes.data(), count) == count;
}

std::uint32_t codeAt(const std::byte* source) {
  return loadBigEndian<std::uint32_t>(source);
}

struct Chunk {
  std::uint32_t code = 0;
  std::int64_t offset = 0;  ///< of its content
  std::int64_t size = 0;    ///< as announced
};

/// Walks the chunks from `offset` on. `readHeader(offset, chunk)` fills a chunk and says whether it could;
/// `visit` returns false to end the walk. `alignment` is what the start of a chunk is rounded up to.
template <typename ReadHeader, typename Visit>
void walkChunks(const FileHandle& file, std::int64_t offset, std::int64_t alignment, ReadHeader readHeader,
                Visit visit) {
  const std::int64_t fileSize = file.size();
  Chunk chunk;
  for (int i = 0; i < maximumChunks && readHeader(offset, chunk); ++i) {
    if (!visit(chunk) || chunk.size < 0 || chunk.size > fileSize - chunk.offset) return;
    offset = chunk.offset + chunk.size;
    offset += (alignment - offset % alignment) % alignment;
  }
}

/// A depth of `bits` in `bytes` bytes that `convertSamples` takes.
bool describe(LinearPCM& pcm, SampleLayout::Kind kind, bool bigEndian, std::uint32_t bits,
              std::uint32_t bytes) {
  pcm.layout = {kind, bytes, bigEndian};
  pcm.bits = bits;
  return bits > 0 && bits <= 8 * bytes && canConvert(pcm.layout);
}

/// Fits an announced number of bytes of samples, negative when it is not known, to the file.
std::optional<LinearPCM> withFrames(LinearPCM pcm, const FileHandle& file, std::int64_t announcedBytes) {
  const bool sensible = std::isfinite(pcm.sampleRate) && pcm.sampleRate > 0 && pcm.channels > 0 &&
                        pcm.channels <= maximumChannels;
  if (!sensible) return std::nullopt;
  const std::int64_t present = std::max<std::int64_t>(file.size() - pcm.offset, 0);
  const std::int64_t bytes = announcedBytes < 0 ? present : std::min(announcedBytes, present);
  pcm.frames = bytes / pcm.frameBytes();
  return pcm;
}

// RIFF WAVE ------------------------------------------------------------------------------------------------

constexpr std::int64_t unknownSize32 = 0xFFFF'FFFF;

/// Understands a format chunk of `size` bytes (16, 18 or 40 matter). False when it is not linear PCM.
bool readWaveFormat(const Bytes<40>& format, std::int64_t size, LinearPCM& pcm) {
  constexpr std::uint16_t integer = 1;
  constexpr std::uint16_t floatingPoint = 3;
  constexpr std::uint16_t extensible = 0xFFFE;
  // What follows the two bytes of the format tag in the identifier of an extensible format.
  constexpr unsigned char identifierTail[14] = {0, 0, 0, 0, 0x10, 0, 0x80, 0, 0, 0xAA, 0, 0x38, 0x9B, 0x71};

  auto tag = loadLittleEndian<std::uint16_t>(&format[0]);
  pcm.channels = loadLittleEndian<std::uint16_t>(&format[2]);
  pcm.sampleRate = loadLittleEndian<std::uint32_t>(&format[4]);
  const std::uint32_t frameBytes = loadLittleEndian<std::uint16_t>(&format[12]);
  std::uint32_t bits = loadLittleEndian<std::uint16_t>(&format[14]);
  if (pcm.channels == 0) return false;
  const std::uint32_t bytes = std::max((bits + 7) / 8, frameBytes / pcm.channels);
  if (tag == extensible) {
    if (size < 40 || std::memcmp(&format[26], identifierTail, sizeof identifierTail) != 0) return false;
    tag = loadLittleEndian<std::uint16_t>(&format[24]);
    const std::uint32_t validBits = loadLittleEndian<std::uint16_t>(&format[18]);
    if (validBits > 0 && validBits < bits) bits = validBits;
  }
  if (tag == floatingPoint)
    return bits == 8 * bytes && describe(pcm, SampleLayout::Kind::floatingPoint, false, bits, bytes);
  if (tag != integer) return false;
  const auto kind = bytes == 1 ? SampleLayout::Kind::unsignedInteger : SampleLayout::Kind::signedInteger;
  return describe(pcm, kind, false, bits, bytes);
}

std::optional<LinearPCM> findInWave(const FileHandle& file, const Bytes<12>& start) {
  const bool wide = codeAt(&start[0]) != fourCharacterCode("RIFF");
  const std::int64_t fileBytes = loadLittleEndian<std::uint32_t>(&start[4]);
  bool unfinished = fileBytes == 0 || fileBytes == unknownSize32;
  std::int64_t wideDataBytes = -1;
  bool formatKnown = false;
  LinearPCM pcm;
  std::optional<LinearPCM> found;
  const auto readHeader = [&](std::int64_t offset, Chunk& chunk) {
    Bytes<8> header;
    if (!readAt(file, offset, header)) return false;
    chunk = {codeAt(&header[0]), offset + 8, loadLittleEndian<std::uint32_t>(&header[4])};
    return true;
  };
  walkChunks(file, 12, 2, readHeader, [&](const Chunk& chunk) {
    if (chunk.code == fourCharacterCode("ds64") && wide) {
      Bytes<16> sizes;
      if (!readAt(file, chunk.offset, sizes)) return false;
      const auto riffBytes = loadLittleEndian<std::int64_t>(&sizes[0]);
      wideDataBytes = loadLittleEndian<std::int64_t>(&sizes[8]);
      unfinished = riffBytes <= 0;
    } else if (chunk.code == fourCharacterCode("fmt ") && !formatKnown) {
      Bytes<40> format = {};
      if (chunk.size < 16 || file.readAt(chunk.offset, format.data(), format.size()) < 16) return false;
      formatKnown = readWaveFormat(format, chunk.size, pcm);
      return formatKnown;
    } else if (chunk.code == fourCharacterCode("data")) {
      if (!formatKnown) return false;
      std::int64_t bytes = chunk.size == unknownSize32 ? wideDataBytes : chunk.size;
      if (bytes == 0 && unfinished) bytes = -1;
      pcm.offset = chunk.offset;
      found = withFrames(pcm, file, bytes);
      return false;
    }
    return true;
  });
  return found;
}

// AIFF and AIFF-C ------------------------------------------------------------------------------------------

/// An 80-bit extended number: sign, 15 bits of exponent, 64 bits of mantissa with its leading 1.
double loadExtended(const std::byte* source) {
  const auto signAndExponent = loadBigEndian<std::uint16_t>(source);
  const auto mantissa = loadBigEndian<std::uint64_t>(source + 2);
  const double magnitude =
      std::ldexp(static_cast<double>(mantissa), static_cast<int>(signAndExponent & 0x7FFF) - 16383 - 63);
  return (signAndExponent & 0x8000) != 0 ? -magnitude : magnitude;
}

/// Understands the stored form by its compression type. False when it is not linear PCM.
bool readAiffForm(std::uint32_t compression, std::uint32_t bits, LinearPCM& pcm) {
  const auto integer = SampleLayout::Kind::signedInteger;
  const auto floatingPoint = SampleLayout::Kind::floatingPoint;
  switch (compression) {
    case fourCharacterCode("NONE"):
    case fourCharacterCode("twos"):
      return describe(pcm, integer, true, bits, (bits + 7) / 8);
    case fourCharacterCode("sowt"):
      return describe(pcm, integer, false, bits, (bits + 7) / 8);
    case fourCharacterCode("raw "):
      return describe(pcm, SampleLayout::Kind::unsignedInteger, true, bits, (bits + 7) / 8);
    case fourCharacterCode("in24"):
      return describe(pcm, integer, true, 24, 3);
    case fourCharacterCode("42ni"):
      return describe(pcm, integer, false, 24, 3);
    case fourCharacterCode("in32"):
      return describe(pcm, integer, true, 32, 4);
    case fourCharacterCode("23ni"):
      return describe(pcm, integer, false, 32, 4);
    case fourCharacterCode("fl32"):
    case fourCharacterCode("FL32"):
      return describe(pcm, floatingPoint, true, 32, 4);
    case fourCharacterCode("fl64"):
    case fourCharacterCode("FL64"):
      return describe(pcm, floatingPoint, true, 64, 8);
    default:
      return false;
  }
}

std::optional<LinearPCM> findInAiff(const FileHandle& file, const Bytes<12>& start) {
  const bool compressible = codeAt(&start[8]) == fourCharacterCode("AIFC");
  const bool unfinished = loadBigEndian<std::uint32_t>(&start[4]) == 0;
  LinearPCM pcm;
  bool formatKnown = false;
  std::int64_t announcedFrames = 0;
  std::optional<std::int64_t> soundBytes;
  const auto readHeader = [&](std::int64_t offset, Chunk& chunk) {
    Bytes<8> header;
    if (!readAt(file, offset, header)) return false;
    chunk = {codeAt(&header[0]), offset + 8, loadBigEndian<std::uint32_t>(&header[4])};
    return true;
  };
  walkChunks(file, 12, 2, readHeader, [&](const Chunk& chunk) {
    if (chunk.code == fourCharacterCode("COMM") && !formatKnown) {
      Bytes<22> common = {};
      const std::size_t wanted = compressible ? 22 : 18;
      if (chunk.size < static_cast<std::int64_t>(wanted)) return false;
      if (file.readAt(chunk.offset, common.data(), wanted) < wanted) return false;
      pcm.channels = loadBigEndian<std::uint16_t>(&common[0]);
      announcedFrames = loadBigEndian<std::uint32_t>(&common[2]);
      pcm.sampleRate = loadExtended(&common[8]);
      const std::uint32_t compression = compressible ? codeAt(&common[18]) : fourCharacterCode("NONE");
      formatKnown = readAiffForm(compression, loadBigEndian<std::uint16_t>(&common[6]), pcm);
      if (!formatKnown) return false;
    } else if (chunk.code == fourCharacterCode("SSND") && !soundBytes) {
      Bytes<4> offset;
      if (!readAt(file, chunk.offset, offset)) return false;
      const std::int64_t before = 8 + std::int64_t{loadBigEndian<std::uint32_t>(offset.data())};
      pcm.offset = chunk.offset + before;
      soundBytes = std::max<std::int64_t>(chunk.size - before, 0);
    }
    return !(formatKnown && soundBytes);
  });
  // A file without frames may leave the sound chunk out.
  if (!formatKnown || (!soundBytes && announcedFrames > 0)) return std::nullopt;
  if (unfinished && announcedFrames == 0 && soundBytes == 0) return withFrames(pcm, file, -1);
  return withFrames(pcm, file, std::min(soundBytes.value_or(0), announcedFrames * pcm.frameBytes()));
}

// Core Audio Format ----------------------------------------------------------------------------------------

/// Understands a description chunk. False when it is not linear PCM.
bool readCafDescription(const Bytes<32>& description, LinearPCM& pcm) {
  constexpr std::uint32_t floatFlag = 1;
  constexpr std::uint32_t littleEndianFlag = 2;
  if (codeAt(&description[8]) != fourCharacterCode("lpcm")) return false;
  pcm.sampleRate = loadBigEndian<double>(&description[0]);
  const auto flags = loadBigEndian<std::uint32_t>(&description[12]);
  const auto frameBytes = loadBigEndian<std::uint32_t>(&description[16]);
  const auto framesPerPacket = loadBigEndian<std::uint32_t>(&description[20]);
  pcm.channels = loadBigEndian<std::uint32_t>(&description[24]);
  if (framesPerPacket != 1 || pcm.channels == 0 || frameBytes % pcm.channels != 0) return false;
  const auto kind =
      (flags & floatFlag) != 0 ? SampleLayout::Kind::floatingPoint : SampleLayout::Kind::signedInteger;
  return describe(pcm, kind, (flags & littleEndianFlag) == 0, loadBigEndian<std::uint32_t>(&description[28]),
                  frameBytes / pcm.channels);
}

template <typename Visit>
void walkCafChunks(const FileHandle& file, Visit visit) {
  const auto readHeader = [&](std::int64_t offset, Chunk& chunk) {
    Bytes<12> header;
    if (!readAt(file, offset, header)) return false;
    chunk = {codeAt(&header[0]), offset + 12, loadBigEndian<std::int64_t>(&header[4])};
    return true;
  };
  walkChunks(file, 8, 1, readHeader, visit);
}

std::optional<LinearPCM> findInCaf(const FileHandle& file) {
  constexpr std::int64_t editCountBytes = 4;
  constexpr std::int64_t openEnded = -1;
  LinearPCM pcm;
  bool formatKnown = false;
  std::optional<LinearPCM> found;
  walkCafChunks(file, [&](const Chunk& chunk) {
    if (chunk.code == fourCharacterCode("desc") && !formatKnown) {
      Bytes<32> description;
      formatKnown =
          chunk.size >= 32 && readAt(file, chunk.offset, description) && readCafDescription(description, pcm);
      return formatKnown;
    }
    if (chunk.code != fourCharacterCode("data")) return true;
    const bool sized = chunk.size >= editCountBytes;
    if (formatKnown && (sized || chunk.size == openEnded)) {
      pcm.offset = chunk.offset + editCountBytes;
      found = withFrames(pcm, file, sized ? chunk.size - editCountBytes : openEnded);
    }
    return false;
  });
  return found;
}

bool isCaf(const Bytes<12>& start) {
  return codeAt(&start[0]) == fourCharacterCode("caff") && loadBigEndian<std::uint16_t>(&start[4]) == 1;
}

}  // namespace

std::optional<LinearPCM> findLinearPCM(const FileHandle& file) {
  Bytes<12> start;
  if (!readAt(file, 0, start)) return std::nullopt;
  const std::uint32_t outer = codeAt(&start[0]);
  const std::uint32_t inner = codeAt(&start[8]);
  const bool riff = outer == fourCharacterCode("RIFF") || outer == fourCharacterCode("RF64") ||
                    outer == fourCharacterCode("BW64");
  if (riff && inner == fourCharacterCode("WAVE")) return findInWave(file, start);
  const bool aiff = inner == fourCharacterCode("AIFF") || inner == fourCharacterCode("AIFC");
  if (outer == fourCharacterCode("FORM") && aiff) return findInAiff(file, start);
  if (isCaf(start)) return findInCaf(file);
  return std::nullopt;
}

std::optional<CafStream> findCafStream(const FileHandle& file) {
  constexpr std::int64_t editCountBytes = 4;
  Bytes<12> start;
  if (!readAt(file, 0, start) || !isCaf(start)) return std::nullopt;
  CafStream stream;
  walkCafChunks(file, [&](const Chunk& chunk) {
    if (Bytes<32> description;
        chunk.code == fourCharacterCode("desc") && readAt(file, chunk.offset, description)) {
      stream.sampleRate = loadBigEndian<double>(&description[0]);
      stream.formatID = codeAt(&description[8]);
      stream.channels = loadBigEndian<std::uint32_t>(&description[24]);
    } else if (Bytes<24> table;
               chunk.code == fourCharacterCode("pakt") && readAt(file, chunk.offset, table)) {
      const auto valid = loadBigEndian<std::int64_t>(&table[8]);
      const auto priming = loadBigEndian<std::int32_t>(&table[16]);
      if (loadBigEndian<std::int64_t>(&table[0]) == 0) stream.empty = true;
      if (priming >= 0 && valid > 0) {
        stream.primingFrames = priming;
        stream.validFrames = valid;
      }
    } else if (chunk.code == fourCharacterCode("data")) {
      if (chunk.size == editCountBytes) stream.empty = true;
    }
    return true;
  });
  return stream.formatID != 0 ? std::optional(stream) : std::nullopt;
}

}  // namespace zarnet
