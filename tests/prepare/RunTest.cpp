#include "audio/AppError.h"
#include "prepare/AudioPreparer.h"
#include "tests/support/Programs.h"
#include "tests/support/Seed.h"

#include <chrono>
#include <random>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zarnet {

namespace {

class Run : public testing::Test {
 protected:
  std::string log() const { return test::readFile(preparer.directory / "process.log"); }

  /// What a run raises; empty when it raises nothing.
  std::string failure(const std::string& script) {
    try {
      preparer.run("/bin/sh", {"-c", script});
    } catch (const AppError& error) {
      return error.message;
    }
    return "";
  }

  AudioPreparer preparer{"/nowhere/lame"};
  test::ScratchFolder scratch;
};

}  // namespace

TEST_F(Run, TellsTheEndOfTheLogOfAProgramThatFails) {
  const std::string huge(12'000'000, 'x');
  std::string families;
  std::string lastFamilies;
  for (int k = 0; k < 5000; ++k) {
    families += "👩‍👩‍👧";
    if (k < 650) lastFamilies += "👩‍👩‍👧";
  }
  const std::pair<std::string, std::string> table[] = {
      {"", ""},
      {families, lastFamilies},
      {huge + "the end", std::string(643, 'x') + "the end"},
      {"\xFF" + huge, ""},
      {"cut short \xE2\x82", ""},
  };
  for (const auto& [printed, tail] : table) {
    const auto text = test::writeFile(scratch / "text", printed);
    for (const char* const ending : {"exit 1", "kill -KILL $$"})
      EXPECT_EQ(failure("cat " + text.string() + "; " + ending), "Audio conversion failed. " + tail);
  }
}

TEST_F(Run, LetsACancelledProgramEndInItsOwnTime) {
  // It takes its time to end, and gets it.
  const std::string script =
      "trap 'asked=1' TERM; echo started; until [ \"$asked\" ]; do :; done; sleep 0.1; echo done";
  std::jthread canceller([&] {
    EXPECT_TRUE(test::waitUntil(
        [&] { return std::filesystem::exists(preparer.directory / "process.log") && log() == "started\n"; }));
    preparer.cancel();
  });
  EXPECT_EQ(failure(script), "Cancelled");
  EXPECT_EQ(log(), "started\ndone\n");
}

TEST_F(Run, SurvivesCancellationAtAnyMoment) {
  std::mt19937 random(test::testSeed());
  int finished = 0;
  for (int k = 0; k < 300; ++k) {
    preparer.resetCancellation();
    const std::chrono::microseconds delay(random() % 3000);
    std::jthread canceller([&] {
      std::this_thread::sleep_for(delay);
      preparer.cancel();
    });
    const std::string message = failure(k % 2 == 0 ? "exec sleep 1000" : "exec true");
    if (message.empty()) {
      ++finished;
    } else {
      EXPECT_EQ(message, "Cancelled");
    }
    ASSERT_EQ(test::livingChildren(), 0);
  }
  EXPECT_LT(finished, 151) << "a program that never ends was taken for finished";
}

}  // namespace zarnet
