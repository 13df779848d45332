#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace zarnet::test {

/// A new empty folder for one test, removed with its content at the end of the scope.
class ScratchFolder {
 public:
  /// Lies in `parent`, or in the system's temporary folder.
  explicit ScratchFolder(const std::filesystem::path& parent = std::filesystem::temp_directory_path()) {
    std::string name = (parent / "zarnet-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no scratch folder: " + name);
    folder = name;
  }
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  const std::filesystem::path& path() const { return folder; }
  /// The location of an entry of that name.
  std::filesystem::path operator/(const std::filesystem::path& name) const { return folder / name; }

 private:
  std::filesystem::path folder;
};

/// Writes a file with exactly this content and returns its location.
inline std::filesystem::path writeFile(const std::filesystem::path& path, std::string_view content) {
  std::ofstream file(path, std::ios::binary);
  EXPECT_TRUE(file << content << std::flush) << "could not write " << path;
  return path;
}

/// The whole content of a file; fails the test when it cannot be read.
inline std::string readFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file) << "could not read " << path;
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace zarnet::test
