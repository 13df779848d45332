#pragma once

#include "system/FileHandle.h"

#include <iostream>

#include <sys/mman.h>

namespace zarnet::fuzz {

/// The location of a new empty file in memory, which lasts as long as the process.
inline std::filesystem::path memoryFile() {
  return "/proc/self/fd/" + std::to_string(memfd_create("fuzz", MFD_CLOEXEC));
}

/// Ends the run unless the claim holds.
inline void expect(bool holds, const char* claim) {
  if (holds) return;
  std::cerr << "not so: " << claim << "\n";
  std::abort();
}

}  // namespace zarnet::fuzz
