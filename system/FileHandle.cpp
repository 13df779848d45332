#include "system/FileHandle.h"

#include "system/DisplayText.h"
#include "system/PlatformError.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zarnet {

namespace {

int openFile(const std::filesystem::path& path, int flags) {
  int fd = -1;
  do {
    fd = open(path.c_str(), flags | O_CLOEXEC, 0666);
  } while (fd < 0 && errno == EINTR);
  if (fd < 0) throw systemError(path, "could not be opened", errno);
  return fd;
}

/// Calls `step(target, bytes, done)`, a read of the system, until all bytes are there or the file ends.
template <typename Step>
std::size_t readAll(const std::filesystem::path& path, void* target, std::size_t bytes, Step step) {
  std::size_t done = 0;
  while (done < bytes) {
    const ssize_t received = step(static_cast<char*>(target) + done, bytes - done, done);
    if (received == 0) break;
    if (received > 0) {
      done += static_cast<std::size_t>(received);
    } else if (errno != EINTR) {
      throw systemError(path, "could not be read", errno);
    }
  }
  return done;
}

/// Calls `step(source, bytes, done)`, a write of the system, until all bytes are written.
template <typename Step>
void writeAll(const std::filesystem::path& path, const void* source, std::size_t bytes, Step step) {
  std::size_t done = 0;
  while (done < bytes) {
    const ssize_t written = step(static_cast<const char*>(source) + done, bytes - done, done);
    if (written > 0) {
      done += static_cast<std::size_t>(written);
    } else if (written == 0 || errno != EINTR) {
      throw systemError(path, "could not be written", written == 0 ? EIO : errno);
    }
  }
}

}  // namespace

FileHandle::FileHandle(int descriptor, std::filesystem::path name)
    : file(descriptor), path(std::move(name)) {}

FileHandle FileHandle::openForReading(const std::filesystem::path& path) {
  FileHandle file(openFile(path, O_RDONLY), path);
  struct stat information {};
  if (fstat(file.descriptor(), &information) == 0 && S_ISDIR(information.st_mode))
    throw systemError(path, "could not be opened", EISDIR);
  return file;
}

FileHandle FileHandle::openOrdinaryFile(const std::filesystem::path& path) {
  FileHandle file(openFile(path, O_RDONLY | O_NONBLOCK | O_NOCTTY), path);
  struct stat information {};
  if (fstat(file.descriptor(), &information) != 0) throw systemError(path, "could not be opened", errno);
  if (S_ISDIR(information.st_mode)) throw systemError(path, "could not be opened", EISDIR);
  if (!S_ISREG(information.st_mode))
    throw PlatformError(quotedName(path) + " could not be opened: It is not an ordinary file.");
  return file;
}

FileHandle FileHandle::createForWriting(const std::filesystem::path& path) {
  return {openFile(path, O_WRONLY | O_CREAT | O_TRUNC), path};
}

std::size_t FileHandle::read(void* target, std::size_t bytes) {
  return readAll(path, target, bytes, [this](char* next, std::size_t rest, std::size_t) {
    return ::read(file.get(), next, rest);
  });
}

std::size_t FileHandle::readAt(std::int64_t offset, void* target, std::size_t bytes) const {
  return readAll(path, target, bytes, [this, offset](char* next, std::size_t rest, std::size_t done) {
    return pread(file.get(), next, rest, offset + static_cast<std::int64_t>(done));
  });
}

std::int64_t FileHandle::size() const {
  struct stat information {};
  if (fstat(file.get(), &information) != 0) throw systemError(path, "could not be read", errno);
  return information.st_size;
}

void FileHandle::write(const void* source, std::size_t bytes) {
  writeAll(path, source, bytes, [this](const char* next, std::size_t rest, std::size_t) {
    return ::write(file.get(), next, rest);
  });
}

void FileHandle::writeAt(std::int64_t offset, const void* source, std::size_t bytes) {
  writeAll(path, source, bytes, [this, offset](const char* next, std::size_t rest, std::size_t done) {
    return pwrite(file.get(), next, rest, offset + static_cast<std::int64_t>(done));
  });
}

void FileHandle::reserve(std::int64_t bytes) {
  if (fallocate(file.get(), FALLOC_FL_KEEP_SIZE, 0, bytes) != 0 && (errno == ENOSPC || errno == EDQUOT))
    throw systemError(path, "could not be written", errno);
}

void FileHandle::close() {
  if (!file.close()) throw systemError(path, "could not be written", errno);
}

}  // namespace zarnet
