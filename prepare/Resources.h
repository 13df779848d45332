#pragma once

#include <filesystem>

namespace zarnet {

/// The folder of the external programs and the icon: "resources" beside the running program, as it was built,
/// else where it lies once installed. Not examined further. Any thread.
std::filesystem::path resourcesFolder();

/// The program that converts audio and encodes AAC: the platform's own where it has one, else the stand-in in
/// the folder of the other external programs. Any thread.
std::filesystem::path converterProgram(const std::filesystem::path& resources);

}  // namespace zarnet
