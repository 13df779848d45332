#include "output/OutputWatch.h"

namespace zarnet {

namespace {

constexpr const char* undecided = "@DEFAULT_SINK@";  // named for a moment while devices change

}  // namespace

bool OutputWatch::isLost(const OutputReport& report) {
  using Kind = OutputReport::Kind;
  const bool ours = isOpen && report.output == number;
  switch (report.kind) {
    case Kind::defaultOutput:
      if (!report.name.empty() && report.name != undecided) defaultOutput = report.name;
      break;
    case Kind::opened:
      isOpen = true;
      number = report.output;
      name = report.name;
      break;
    case Kind::activePort: {
      if (!ours) return false;
      const bool changed = portKnown && report.name != port;
      portKnown = true;
      port = report.name;
      return changed;
    }
    case Kind::removed:
      return ours;
    case Kind::suspended:
      return awake;
    case Kind::awake:
      awake = true;
      return false;
    case Kind::moved:
    case Kind::ended:
      return true;
  }
  if (!isOpen || defaultOutput.empty()) return false;
  if (defaultOutput == name) followsDefault = true;
  return followsDefault && defaultOutput != name;
}

}  // namespace zarnet
