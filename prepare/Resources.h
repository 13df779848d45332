#pragma once

#include <filesystem>

namespace zarnet {

/// The folder of the external programs and the icon: "resources" beside the running program, as it was built,
/// else where it lies once installed. Not examined further. Any thread.
std::filesystem::path resourcesFolder();

}  // namespace zarnet
