#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace zarnet {

/// What the command line asks for.
struct DriverOptions {
  enum class Task { prepare, help, version };

  Task task = Task::prepare;
  std::string codec = "AAC";                       ///< as given; not checked here
  std::int64_t bitrate = 256;                      ///< kbps, any number; not checked here
  bool match = true;                               ///< whether loudness is matched
  std::optional<std::filesystem::path> output;     ///< where to leave the set of each comparison
  bool byPath = false;                             ///< whether they are named after the whole path of a file
  std::optional<std::filesystem::path> resources;  ///< where lame, afconvert and vorbis-tool are
  std::vector<std::filesystem::path> files;        ///< not empty when there is something to prepare
};

/// Reads the command line. Nothing when it is wrong; what is wrong with it was then written to standard
/// error. `help` and `version` come back as soon as they are met. Not thread-safe, and once per process.
std::optional<DriverOptions> parsedOptions(int count, char** values);

/// How the program is called, in one line with its line feed.
std::string usageText();
/// `usageText` and what every option does, several lines.
std::string helpText();

}  // namespace zarnet
