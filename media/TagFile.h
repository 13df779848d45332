#pragma once

#include "system/FileHandle.h"

#include <cstdint>
#include <string>

namespace zarnet {

/// A file in which tags are looked for. A file cannot keep its reader busy: once 64 MiB of it have been
/// read, or 100,000 pieces, everything reads as if the file had ended.
class TagFile {
 public:
  /// Requires: `source` outlives this object.
  explicit TagFile(const FileHandle& source) : handle(source), fileSize(source.size()) {}

  std::int64_t size() const { return fileSize; }
  /// The bytes from a place on, fewer where the file ends; none for a count below 1. Raises a `PlatformError`
  /// when the file system fails.
  std::string bytes(std::int64_t offset, std::int64_t count);

 private:
  const FileHandle& handle;
  const std::int64_t fileSize;
  std::string block;  ///< of the file, read at once: tags come in small pieces
  std::int64_t blockStart = 0;
  std::int64_t bytesLeft = std::int64_t{64} << 20;
  int piecesLeft = 100'000;
};

/// The bytes of a stretch of a file one after another.
class TagStream {
 public:
  /// From `start` to `end`. With `isEscaped` the zero that a writer put behind each 0xFF is left out, and
  /// does not count.
  TagStream(TagFile& source, std::int64_t start, std::int64_t end, bool isEscaped);

  /// The next bytes, fewer at the end.
  std::string read(std::int64_t count);
  void skip(std::int64_t count);

  /// Where in the file the next byte lies.
  std::int64_t position() const { return place; }
  std::int64_t end() const { return last; }
  /// Whether zeros are left out.
  bool isEscaped() const { return escaped; }

 private:
  TagFile* file;
  std::int64_t place;
  std::int64_t last;
  bool escaped;
};

/// Takes each zero that follows a 0xFF out of `bytes`.
void unescape(std::string& bytes);

}  // namespace zarnet
