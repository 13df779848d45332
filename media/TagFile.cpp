#include "media/TagFile.h"

#include <algorithm>

namespace zarnet {

std::string TagFile::bytes(std::int64_t offset, std::int64_t count) {
  constexpr std::int64_t blockBytes = 4096;
  const std::int64_t wanted = std::min(count, fileSize - offset);
  if (offset < 0 || wanted <= 0 || piecesLeft == 0) return {};
  --piecesLeft;
  const bool isHeld = offset >= blockStart && offset + wanted <= blockStart + std::ssize(block);
  if (!isHeld) {
    const std::int64_t read = std::min({std::max(wanted, blockBytes), fileSize - offset, bytesLeft});
    bytesLeft -= read;
    block.resize(static_cast<std::size_t>(read));
    block.resize(handle.readAt(offset, block.data(), block.size()));
    blockStart = offset;
  }
  return block.substr(static_cast<std::size_t>(offset - blockStart), static_cast<std::size_t>(wanted));
}

TagStream::TagStream(TagFile& source, std::int64_t start, std::int64_t end, bool isEscaped)
    : file(&source), place(start), last(std::min(end, source.size())), escaped(isEscaped) {}

std::string TagStream::read(std::int64_t count) {
  std::string bytes;
  while (std::ssize(bytes) < count) {
    std::string piece = file->bytes(place, std::min(count - std::ssize(bytes), last - place));
    if (piece.empty()) break;
    place += std::ssize(piece);
    if (escaped && piece.back() == '\xFF' && place < last && file->bytes(place, 1) == std::string(1, '\0'))
      ++place;
    if (escaped) unescape(piece);
    bytes += piece;
  }
  return bytes;
}

void TagStream::skip(std::int64_t count) {
  constexpr std::int64_t pieceBytes = 64 * 1024;
  if (!escaped) {
    place += std::min(count, last - place);
    return;
  }
  while (count > 0) {
    const std::int64_t skipped = std::ssize(read(std::min(count, pieceBytes)));
    if (skipped == 0) return;
    count -= skipped;
  }
}

void unescape(std::string& bytes) {
  std::size_t kept = 0;
  bool behindMarker = false;
  for (const char byte : bytes) {
    if (!behindMarker || byte != '\0') bytes[kept++] = byte;
    behindMarker = byte == '\xFF';
  }
  bytes.resize(kept);
}

}  // namespace zarnet
