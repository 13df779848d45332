#include "output/PulseConfiguration.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <vector>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace zarnet {

namespace {

namespace fs = std::filesystem;

constexpr const char* variable = "PULSE_CLIENTCONFIG";

/// The file that libpulse would read, in its own order (pulsecore/core-util.c); it may not exist.
fs::path configurationFile() {
  if (const char* chosen = std::getenv(variable)) return chosen;
  std::vector<fs::path> places;
  if (const char* folder = std::getenv("PULSE_CONFIG_PATH")) {
    places = {fs::path(folder) / "client.conf"};
  } else if (const char* home = std::getenv("HOME")) {
    places = {fs::path(home) / ".pulse/client.conf", fs::path(home) / ".config/pulse/client.conf"};
  }
  std::error_code ignored;
  for (const fs::path& place : places) {
    if (fs::exists(place, ignored)) return place;
  }
  return "/etc/pulse/client.conf";
}

}  // namespace

std::string pulseConfiguration() {
  std::vector<fs::path> files;
  const fs::path main = configurationFile();
  std::error_code error;
  for (fs::directory_iterator entry(main.string() + ".d", error), end; !error && entry != end;
       entry.increment(error)) {
    if (entry->path().extension() == ".conf") files.push_back(entry->path());
  }
  std::ranges::sort(files);
  files.insert(files.begin(), main);
  constexpr const char* unshared = "enable-shm = no\n";
  std::string content = unshared;  // libpulse leaves off at a mistake in the user's file
  for (const fs::path& file : files) {
    const std::string name = file.string();
    if (name.find('\n') == std::string::npos) content += ".include " + name + "\n";
  }
  return content + unshared;
}

void usePulseConfiguration() {
  const std::string content = pulseConfiguration();
  const int file = memfd_create("zarnet-pulse-client.conf", MFD_CLOEXEC | MFD_ALLOW_SEALING);
  if (file < 0) return;
  // Not /proc/self, which would be something else in a child.
  const std::string path = "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(file);
  const bool written = write(file, content.data(), content.size()) == static_cast<ssize_t>(content.size());
  if (!written || access(path.c_str(), R_OK) != 0) {
    close(file);
    return;
  }
  fcntl(file, F_ADD_SEALS, F_SEAL_WRITE | F_SEAL_GROW | F_SEAL_SHRINK | F_SEAL_SEAL);
  setenv(variable, path.c_str(), 1);
}

}  // namespace zarnet
