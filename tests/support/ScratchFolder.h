#pragma once

#include <filesystem>
#include <string_view>

namespace zarnet::test {

/// A new empty folder for one test, removed with its content at the end of the scope.
class ScratchFolder {
 public:
  /// Lies in `parent`, or in the system's temporary folder.
  explicit ScratchFolder(const std::filesystem::path& parent = std::filesystem::temp_directory_path());
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;

  const std::filesystem::path& path() const { return folder; }
  /// The location of an entry of that name.
  std::filesystem::path operator/(const std::filesystem::path& name) const { return folder / name; }

 private:
  std::filesystem::path folder;
};

/// Writes a small file with exactly this content and returns its location.
std::filesystem::path writeFile(const std::filesystem::path& path, std::string_view content);

/// The whole content of a file; fails the test when it cannot be read.
std::string readFile(const std::filesystem::path& path);

}  // namespace zarnet::test
