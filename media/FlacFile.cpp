#include "media/FlacFile.h"

#include "media/ByteOrder.h"
#include "media/LeadingTags.h"
#include "media/OggPackets.h"
#include "media/StreamDescription.h"
#include "system/DisplayText.h"
#include "system/PlatformError.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

namespace zarnet {

namespace {

constexpr std::uint32_t mark = fourCharacterCode("fLaC");
constexpr std::uint32_t pageMark = fourCharacterCode("OggS");
constexpr std::int64_t blockHeaderBytes = 4;

/// A file with more metadata blocks than this is not meant to be read.
constexpr int maximumBlocks = 65'536;

/// What may follow the last frame without hiding it from `lastFlacFrames`.
constexpr std::int64_t endAllowance = 64 << 10;

/// Understands a STREAMINFO block with the header before it; nothing when it is none that audio can have.
std::optional<FlacHeader> parseHeader(const std::byte* source) {
  constexpr std::uint32_t streamInfoOf34Bytes = 34;
  if ((loadBigEndian<std::uint32_t>(source) & 0x7FFF'FFFF) != streamInfoOf34Bytes) return std::nullopt;
  FlacHeader header;
  std::memcpy(header.block.data(), source + blockHeaderBytes, FlacHeader::blockBytes);
  const auto packed = loadBigEndian<std::uint64_t>(&header.block[10]);
  header.sampleRate = static_cast<std::uint32_t>(packed >> 44);
  header.channels = static_cast<std::uint32_t>(packed >> 41 & 7) + 1;
  header.bits = static_cast<std::uint32_t>(packed >> 36 & 31) + 1;
  header.longestBlock = loadBigEndian<std::uint16_t>(&header.block[2]);
  header.totalFrames = static_cast<std::int64_t>(packed & 0xF'FFFF'FFFF);
  header.hasChecksum = std::any_of(header.block.begin() + 18, header.block.end(),
                                   [](std::byte b) { return b != std::byte{}; });
  if (header.sampleRate == 0 || header.bits < 4) return std::nullopt;
  return header;
}

/// The offset behind the metadata blocks, the first of which lies at `offset`; nothing when they go beyond
/// the end.
std::optional<std::int64_t> endOfMetadata(const FileHandle& file, std::int64_t offset) {
  const std::int64_t size = file.size();
  std::byte header[blockHeaderBytes];
  for (int i = 0; i < maximumBlocks && file.readAt(offset, header, sizeof header) == sizeof header; ++i) {
    const auto flagTypeAndSize = loadBigEndian<std::uint32_t>(header);
    offset += blockHeaderBytes + (flagTypeAndSize & 0xFF'FFFF);
    if (offset > size) return std::nullopt;
    if ((flagTypeAndSize & 0x8000'0000) != 0) return offset;
  }
  return std::nullopt;
}

FlacFile findNative(const FileHandle& file, std::int64_t offset) {
  offset += sizeof mark;
  std::byte block[blockHeaderBytes + FlacHeader::blockBytes];
  const bool whole = file.readAt(offset, block, sizeof block) == sizeof block;
  const auto header = whole ? parseHeader(block) : std::nullopt;
  const auto start = endOfMetadata(file, offset);
  if (!header || !start) {
    throw PlatformError(quotedName(file.location()) +
                        " could not be opened: Its header is damaged or incomplete.");
  }
  return {FlacFile::Container::native, *header, *start};
}

/// The total that the last page of an Ogg stream states; 0 when none is found near the end of the file.
std::int64_t totalOfLastPage(const FileHandle& file, const std::byte* firstPage) {
  constexpr std::int64_t granulePlace = 6;
  constexpr std::int64_t serialPlace = 14;
  constexpr std::int64_t serialBytes = 4;
  constexpr std::int64_t searched = 2L * 65'307;  // two pages of the greatest size
  std::vector<std::byte> bytes(static_cast<std::size_t>(std::min(searched, file.size())));
  bytes.resize(
      file.readAt(file.size() - static_cast<std::int64_t>(bytes.size()), bytes.data(), bytes.size()));
  std::int64_t total = 0;
  for (std::size_t i = 0; i + serialPlace + serialBytes <= bytes.size(); ++i) {
    const bool found = loadBigEndian<std::uint32_t>(&bytes[i]) == pageMark &&
                       std::memcmp(&bytes[i + serialPlace], firstPage + serialPlace, serialBytes) == 0;
    if (found) total = loadLittleEndian<std::int64_t>(&bytes[i + granulePlace]);
  }
  return std::max<std::int64_t>(total, 0);
}

/// A first page as the FLAC mapping of Ogg has it: one packet of 51 bytes, which holds the native start of a
/// stream behind 9 bytes of its own.
std::optional<FlacFile> findInOgg(const FileHandle& file, std::int64_t offset) {
  constexpr std::size_t pageHeaderBytes = 28;
  constexpr unsigned char packetStart[] = {0x7F, 'F', 'L', 'A', 'C', 1};
  constexpr std::size_t ownBytes = 9;
  std::byte page[pageHeaderBytes + ownBytes + sizeof mark + blockHeaderBytes + FlacHeader::blockBytes];
  if (file.readAt(offset, page, sizeof page) < sizeof page) return std::nullopt;
  const std::byte* native = page + pageHeaderBytes + ownBytes;
  const bool found = loadBigEndian<std::uint32_t>(page) == pageMark &&
                     std::memcmp(page + pageHeaderBytes, packetStart, sizeof packetStart) == 0 &&
                     loadBigEndian<std::uint32_t>(native) == mark;
  auto header = found ? parseHeader(native + sizeof mark) : std::nullopt;
  if (!header) return std::nullopt;
  if (header->totalFrames == 0) header->totalFrames = totalOfLastPage(file, page);
  return FlacFile{FlacFile::Container::ogg, *header, offset};
}

ByteSource bytesFrom(const FileHandle& file, std::int64_t offset) {
  return [&file, offset](std::byte* target, std::size_t bytes) mutable {
    const std::size_t count = file.readAt(offset, target, bytes);
    offset += static_cast<std::int64_t>(count);
    return count;
  };
}

ByteSource oggPacketsFrom(const FileHandle& file, const FlacFile& flac, std::int64_t offset) {
  const auto packets = std::make_shared<OggPackets>(file, flac.start, offset);
  return [packets](std::byte* target, std::size_t bytes) { return packets->read(target, bytes); };
}

ByteSource framesFrom(const FileHandle& file, const FlacFile& flac, std::int64_t offset) {
  return flac.container == FlacFile::Container::native ? bytesFrom(file, offset)
                                                       : oggPacketsFrom(file, flac, offset);
}

}  // namespace

std::optional<FlacFile> findFlac(const FileHandle& file) {
  const std::int64_t offset = endOfLeadingTags(file);
  std::byte start[sizeof mark];
  if (file.readAt(offset, start, sizeof start) < sizeof start) return std::nullopt;
  if (loadBigEndian<std::uint32_t>(start) == mark) return findNative(file, offset);
  return findInOgg(file, offset);
}

ByteSource flacFrames(const FileHandle& file, const FlacFile& flac) {
  return framesFrom(file, flac, flac.start);
}

ByteSource lastFlacFrames(const FileHandle& file, const FlacFile& flac) {
  // Two blocks that did not become smaller.
  const FlacHeader& header = flac.header;
  const std::int64_t blockBytes = std::int64_t{header.longestBlock} * header.channels * header.bits / 8;
  return framesFrom(file, flac, std::max(flac.start, file.size() - 2 * blockBytes - endAllowance));
}

}  // namespace zarnet
