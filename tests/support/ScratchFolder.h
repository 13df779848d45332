#pragma once

#include <filesystem>
#include <fstream>

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

inline std::string bigEndian(std::uint64_t number, int bytes) {
  std::string result;
  for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
    result += static_cast<char>(number >> shift & 0xFF);
  return result;
}

inline std::string littleEndian(std::uint64_t number, int bytes) {
  const std::string reversed = bigEndian(number, bytes);
  return {reversed.rbegin(), reversed.rend()};
}

/// A chunk of a RIFF file, padded to an even size.
inline std::string riffChunk(std::string_view id, const std::string& content) {
  return std::string(id) + littleEndian(content.size(), 4) + content + std::string(content.size() % 2, '\0');
}

}  // namespace zarnet::test
