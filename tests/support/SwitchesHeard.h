#pragma once

#include "tests/support/ReferencePlayer.h"
#include "tests/support/SoundServer.h"

#include <cmath>

#include <gtest/gtest.h>

namespace zarnet::test {

/// Waits until a recording holds all `frames` that a player has played, follows them from `start` on and
/// returns how many switches they hold. −1, with a failure, when a frame is not the right mix within 1e-6.
/// Silence is passed over: a busy server inserts it wherever it likes, but loses no frame.
inline int switchesHeard(const MonitorRecorder& recorder, std::int64_t frames, const ReferencePlayer& start) {
  std::vector<std::array<float, 2>> heard;
  const auto isComplete = [&] {
    const std::vector<float> samples = recorder.samples();
    heard.clear();
    for (std::size_t i = 0; i < samples.size(); i += 2) {
      if (samples[i] != 0 || samples[i + 1] != 0) heard.push_back({samples[i], samples[i + 1]});
    }
    return std::ssize(heard) >= frames;
  };
  EXPECT_TRUE(waitUntil(isComplete));
  EXPECT_EQ(std::ssize(heard), frames);

  // Where the versions are much alike a switch does not show at once. So all states that the player may be in
  // are followed together, each with the fewest switches that lead to it.
  struct Way {
    ReferencePlayer player;
    int switches;
  };
  std::map<std::pair<float, bool>, Way> ways = {{{}, {start, 0}}};
  for (const auto& [left, right] : heard) {
    decltype(ways) onwards;
    for (const auto& [state, way] : ways) {
      for (const int switches : {0, 1}) {
        Way next = way;
        if (switches == 1) next.player.selectedA = !way.player.selectedA;
        next.switches += switches;
        const std::array<float, 2> frame = next.player.frame();
        if (std::abs(left - frame[0]) > 1e-6 || std::abs(right - frame[1]) > 1e-6) continue;
        Way& best = onwards.try_emplace({next.player.blend, next.player.selectedA}, next).first->second;
        best.switches = std::min(best.switches, next.switches);
      }
    }
    if (onwards.empty()) {
      const Way& last = ways.begin()->second;
      ADD_FAILURE() << "frame " << last.player.position << " after " << last.switches << " switches";
      return -1;
    }
    ways = std::move(onwards);
  }
  const auto fewer = [](const auto& a, const auto& b) { return a.second.switches < b.second.switches; };
  return std::ranges::min_element(ways, fewer)->second.switches;
}

}  // namespace zarnet::test
