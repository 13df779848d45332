#include "prepare/Resources.h"

#include "system/FileSystem.h"

#include <system_error>

namespace zarnet {

std::filesystem::path resourcesFolder() {
  std::error_code ignored;
  const std::filesystem::path folder = std::filesystem::read_symlink("/proc/self/exe", ignored).parent_path();
  const std::filesystem::path built = folder / "resources";
  return fileExists(built) ? built : standardized(folder / ZARNET_INSTALLED_RESOURCES);
}

std::filesystem::path converterProgram(const std::filesystem::path& resources) {
  const std::filesystem::path fixed = "/usr/bin/afconvert";
  return fileExists(fixed) ? fixed : resources / "afconvert";
}

}  // namespace zarnet
