#pragma once

#include "platform/FileSystem.h"

#include <cstdlib>
#include <filesystem>
#include <iostream>

namespace zarnet::fuzz {

/// A folder for the files of one fuzzing run.
struct Folder {
  Folder() : path(temporaryFolder() / ("zarnet-fuzz-" + newUUID())) { createPrivateFolder(path); }
  ~Folder() { removeAll(path); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  const std::filesystem::path path;
};

/// Ends the run unless the claim holds.
inline void expect(bool holds, const char* claim) {
  if (holds) return;
  std::cerr << "not so: " << claim << "\n";
  std::abort();
}

}  // namespace zarnet::fuzz
