#pragma once

#include "system/FileHandle.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <vector>

namespace zarnet {

/// A file that stays only when it was completed. Every error is a `PlatformError` that names the file.
class OutputFile {
 public:
  /// Creates the file, replacing what is there.
  explicit OutputFile(const std::filesystem::path& path);
  /// Removes the file unless it was finished. What is no regular file (a device, say) stays.
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  /// Writes `bytes` bytes `offset` bytes after the file's begin. Any thread.
  void writeAt(std::int64_t offset, const void* source, std::size_t bytes);
  /// Closes the file, which is complete then. Nothing may be written afterwards.
  void finish();

 private:
  const std::filesystem::path path;
  FileHandle file;
  bool finished = false;
};

/// Writes one part of a file from front to end in large pieces.
class OutputPart {
 public:
  /// The part begins `offset` bytes after the file's begin.
  OutputPart(OutputFile& file, std::int64_t offset);

  void append(const void* source, std::size_t bytes);
  /// Writes what is left; it is lost without this.
  void finish();

 private:
  OutputFile& file;
  std::int64_t offset;
  std::vector<std::byte> buffer;
};

}  // namespace zarnet
