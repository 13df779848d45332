#pragma once

#include <utility>

#include <unistd.h>

namespace zarnet {

/// A file descriptor, closed when it goes out of scope. Not copyable.
class Descriptor {
 public:
  /// Takes over an open descriptor; a negative number stands for none.
  explicit Descriptor(int descriptor = -1) : fd(descriptor) {}
  Descriptor(Descriptor&& other) noexcept : fd(std::exchange(other.fd, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(fd, other.fd);
    return *this;
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (fd >= 0) ::close(fd);
  }

  int get() const { return fd; }
  /// Closes it before the end of the scope; whether nothing that was written is lost.
  bool close() { return ::close(std::exchange(fd, -1)) == 0; }

 private:
  int fd;
};

}  // namespace zarnet
