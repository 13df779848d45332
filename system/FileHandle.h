#pragma once

#include "system/Descriptor.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>

namespace zarnet {

/// An open file, closed when it goes out of scope and never inherited by a child process. Not copyable.
/// Every error is a `PlatformError` that names the file.
class FileHandle {
 public:
  /// Opens an existing file for reading. Raises when it is missing, unreadable or a folder.
  static FileHandle openForReading(const std::filesystem::path& path);
  /// The same for a file that somebody else names: a pipe or a device is refused, and opening never waits.
  static FileHandle openOrdinaryFile(const std::filesystem::path& path);
  /// Opens a file for writing from its start, creating it when it is missing and emptying it when it is not.
  static FileHandle createForWriting(const std::filesystem::path& path);

  /// Reads until `bytes` bytes have been delivered or the file ends; returns how many were. 0 at the end.
  std::size_t read(void* target, std::size_t bytes);
  /// The same from a place of its own, without moving the reading position. Any thread.
  std::size_t readAt(std::int64_t offset, void* target, std::size_t bytes) const;
  /// The present size in bytes.
  std::int64_t size() const;
  /// Writes all of `bytes` bytes, or raises (disk full included; a part may then have been written).
  void write(const void* source, std::size_t bytes);

  /// The same to a place of its own, without moving the writing position.
  void writeAt(std::int64_t offset, const void* source, std::size_t bytes);
  /// Sets aside room on the disk for the first `bytes` bytes; the size stays. Raises when there is none;
  /// where the file system cannot do it, nothing happens.
  void reserve(std::int64_t bytes);
  /// Closes the file before the end of its scope and raises when something that was written is lost. Nothing
  /// else may be called afterwards.
  void close();

  int descriptor() const { return file.get(); }
  /// The location as it was given.
  const std::filesystem::path& location() const { return path; }

 private:
  FileHandle(int descriptor, std::filesystem::path name);

  Descriptor file;
  std::filesystem::path path;
};

}  // namespace zarnet
