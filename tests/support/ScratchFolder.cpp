#include "tests/support/ScratchFolder.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

namespace zarnet::test {

ScratchFolder::ScratchFolder(const std::filesystem::path& parent) {
  std::string name = (parent / "zarnet-test-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no scratch folder: " + name);
  folder = name;
}

ScratchFolder::~ScratchFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(folder, ignored);
}

std::filesystem::path writeFile(const std::filesystem::path& path, std::string_view content) {
  std::ofstream file(path, std::ios::binary);
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  file.close();
  if (!file) ADD_FAILURE() << "could not write " << path;
  return path;
}

std::string readFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) ADD_FAILURE() << "could not read " << path;
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace zarnet::test
