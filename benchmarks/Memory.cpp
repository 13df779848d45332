#include "benchmarks/Memory.h"

#include <fstream>
#include <string>

namespace zarnet::benchmarks {

namespace {

double statusValue(const std::string& name) {
  std::ifstream status("/proc/self/status");
  std::string word;
  while (status >> word) {
    double kibibytes = 0;
    if (word == name && status >> kibibytes) return kibibytes * 1024;
  }
  return 0;
}

}  // namespace

double residentMemory() {
  return statusValue("VmRSS:");
}

double peakMemory() {
  return statusValue("VmHWM:");
}

void resetPeakMemory() {
  std::ofstream("/proc/self/clear_refs") << "5";
}

}  // namespace zarnet::benchmarks
