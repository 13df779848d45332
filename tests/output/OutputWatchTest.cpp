#include "output/OutputWatch.h"

#include <vector>

#include <gtest/gtest.h>

namespace zarnet {

namespace {

using Kind = OutputReport::Kind;

TEST(OutputWatch, IsLostAtTheFirstReportThatTakesTheOutputAway) {
  const OutputReport speakersAreDefault{Kind::defaultOutput, "speakers"};
  const OutputReport usbIsDefault{Kind::defaultOutput, "usb"};
  const OutputReport undecided{Kind::defaultOutput, "@DEFAULT_SINK@"};
  const OutputReport none{Kind::defaultOutput, ""};
  const OutputReport opened{Kind::opened, "speakers", 3};
  const OutputReport headphones{Kind::activePort, "headphones", 3};
  const OutputReport loudspeaker{Kind::activePort, "loudspeaker", 3};
  const OutputReport noPort{Kind::activePort, "", 3};
  const OutputReport portElsewhere{Kind::activePort, "hdmi", 4};
  const OutputReport removed{Kind::removed, "", 3};
  const OutputReport removedElsewhere{Kind::removed, "", 4};
  const OutputReport moved{Kind::moved};
  const OutputReport suspended{Kind::suspended};
  const OutputReport awake{Kind::awake};
  const OutputReport ended{Kind::ended};

  // Each row is lost at its last report, or at none.
  const struct {
    const char* what;
    std::vector<OutputReport> reports;
    bool lost;
  } rows[] = {
      {"another default", {speakersAreDefault, opened, usbIsDefault}, true},
      {"another default at the same time", {usbIsDefault, opened, speakersAreDefault, usbIsDefault}, true},
      {"the same default", {speakersAreDefault, opened, speakersAreDefault}, false},
      {"a default decided late", {undecided, opened, none, speakersAreDefault, undecided}, false},
      {"and changed then", {none, opened, speakersAreDefault, usbIsDefault}, true},
      {"a default elsewhere all the time", {usbIsDefault, opened, undecided, usbIsDefault}, false},
      {"an undecided default", {speakersAreDefault, opened, undecided, none}, false},
      {"a default that changed before", {usbIsDefault, speakersAreDefault, opened}, false},
      {"headphones pulled", {speakersAreDefault, opened, headphones, headphones, loudspeaker}, true},
      {"the last port gone", {speakersAreDefault, opened, headphones, noPort}, true},
      {"a first port", {speakersAreDefault, opened, noPort, headphones}, true},
      {"ports of another output", {speakersAreDefault, opened, noPort, portElsewhere}, false},
      {"a port before the stream", {speakersAreDefault, loudspeaker, opened, headphones}, false},
      {"our output removed", {speakersAreDefault, opened, removed}, true},
      {"an output removed before", {speakersAreDefault, removed, opened}, false},
      {"another output removed", {speakersAreDefault, opened, removedElsewhere}, false},
      {"a stream moved", {speakersAreDefault, opened, moved}, true},
      {"an output that falls asleep", {speakersAreDefault, opened, awake, suspended}, true},
      {"one that sleeps at first", {speakersAreDefault, opened, suspended, suspended, awake, awake}, false},
      {"a dead server", {ended}, true},
  };
  for (const auto& [what, reports, lost] : rows) {
    OutputWatch watch;
    for (std::size_t i = 0; i < reports.size(); ++i) {
      EXPECT_EQ(watch.isLost(reports[i]), lost && i + 1 == reports.size()) << what << ", report " << i;
    }
  }
}

}  // namespace

}  // namespace zarnet
