#pragma once

#include <csignal>

#include <sys/resource.h>

namespace zarnet::test {

/// Lets no file of this process and its children grow beyond a size, for the length of a scope; a write that
/// goes further fails with "File too large".
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : handler(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit limit = {bytes, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit before{};
  void (*handler)(int);
};

}  // namespace zarnet::test
