#include "tests/support/Programs.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/Signals.h"
#include "tests/support/Wait.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zarnet::test {

namespace {

using testing::HasSubstr;
using testing::StartsWith;
using testing::UnorderedElementsAre;

using Arguments = std::vector<std::string>;

Arguments operator+(Arguments first, const Arguments& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

/// Runs zarnet-prepare in `folder`, which it also uses for its temporary files.
ProgramResult driver(const ScratchFolder& folder, const Arguments& arguments) {
  const std::string place = folder.path().string();
  return runProgram(Arguments{"env", "-C", place, "TMPDIR=" + place, ZARNET_DRIVER} + arguments);
}

/// The names of what lies in a folder.
Arguments entries(const std::filesystem::path& folder) {
  Arguments names;
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    names.push_back(entry.path().filename().string());
  return names;
}

std::filesystem::path writeTake(const std::filesystem::path& path) {
  std::filesystem::create_directories(path.parent_path());
  return writeWave(path, music(44100, 1, 1.5), SampleType::int16);
}

struct Comparison {
  Arguments options;
  std::string stem;
  std::string extension;
  std::string recordLine;
};

class PreparedFile : public testing::TestWithParam<Comparison> {};

TEST_P(PreparedFile, givesItsCheckRecordAndItsFiles) {
  // Two file systems, as a temporary folder in memory makes them.
  const ScratchFolder scratch;
  const ScratchFolder temporary("/dev/shm");
  const std::string name = "-a \xff take.1.wav";
  writeTake(scratch / name);
  const ProgramResult result =
      driver(temporary, GetParam().options +
                            Arguments{"--output", (scratch / "results").string(), (scratch / name).string()});
  ASSERT_EQ(result.status, 0) << result.errors;
  EXPECT_THAT(result.errors, StartsWith("Preparing audio…\nCreating the comparison…\nAligning playback"));
  EXPECT_EQ(std::ranges::count(result.errors, '\n'), 3);

  const std::filesystem::path results = scratch / "results" / "-a \xff take.1";
  const std::string& stem = GetParam().stem;
  EXPECT_THAT(entries(results), UnorderedElementsAre("original.wav", stem + GetParam().extension,
                                                     stem + ".caf", stem + "-check.json"));
  EXPECT_EQ(result.output, readFile(results / (stem + "-check.json")));
  EXPECT_THAT(result.output, HasSubstr("\"originalFrames\": 72000,\n"));
  EXPECT_THAT(result.output, HasSubstr(GetParam().recordLine));
  EXPECT_THAT(entries(temporary.path()), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(codecs, PreparedFile,
                         testing::Values(Comparison{{}, "AAC-256", ".m4a", "\"matched\": true"},
                                         Comparison{{"--codec", "MP3", "--bitrate=24", "--no-match"},
                                                    "MP3-24",
                                                    ".mp3",
                                                    "\"loudnessLossy\": 0.0"},
                                         Comparison{{"--codec=Ogg Vorbis", "--bitrate", "128"},
                                                    "Ogg Vorbis-128",
                                                    ".ogg",
                                                    "\"offsetSamples\": 0"}),
                         [](const auto& tested) { return tested.param.extension.substr(1); });

TEST(Driver, goesOnAfterAFailureAndNumbersEqualNames) {
  const ScratchFolder scratch;
  const Arguments sources = {"a/take.wav", "missing\nfile.wav", "out/take 2/take.wav", "-take.wav"};
  for (const std::size_t i : {0, 2, 3})
    writeTake(scratch / sources[i]);
  // Left by somebody else.
  std::filesystem::create_directory(scratch / "out/take");
  writeFile(scratch / "out/take/notes.txt", "mine");

  const ProgramResult result =
      driver(scratch, Arguments{"--codec", "Ogg Vorbis", "--output", "out", "--"} + sources);
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.errors, HasSubstr("\nmissing file.wav:\n“missing file.wav” could not be opened: No such "
                                       "file or directory.\nout/take 2/take.wav:\nPreparing audio…\n"));
  EXPECT_THAT(entries(scratch / "out"), UnorderedElementsAre("take", "take 2", "take 3", "-take"));
  EXPECT_THAT(entries(scratch / "out/take"), testing::Contains("notes.txt"));
  EXPECT_THAT(entries(scratch / "out/take 2"), UnorderedElementsAre("take.wav"));
  std::string records;
  for (const char* folder : {"take", "take 3", "-take"})
    records += readFile(scratch / "out" / folder / "Ogg Vorbis-256-check.json");
  EXPECT_EQ(result.output, records);
}

TEST(Driver, tellsWrongUsageFromWhatCannotBePrepared) {
  const ScratchFolder scratch;
  writeTake(scratch / "take.wav");
  for (const Arguments& wrong : std::vector<Arguments>{{},
                                                       {"--unknown", "take.wav"},
                                                       {"take.wav", "--bitrate"},
                                                       {"--bitrate", "256k", "take.wav"},
                                                       {"--bitrate", "99999999999999999999", "take.wav"},
                                                       {"--no-match=yes", "take.wav"},
                                                       {"--output", "", "take.wav"}}) {
    const ProgramResult result = driver(scratch, wrong);
    EXPECT_EQ(result.status, 2) << testing::PrintToString(wrong);
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.errors, HasSubstr("\nusage: zarnet-prepare [--codec AAC|MP3|\"Ogg Vorbis\"]"));
  }
  for (const auto& [refused, message] : std::vector<std::pair<Arguments, std::string>>{
           {{"--bitrate", "8", "take.wav"}, "Choose a supported format and bitrate.\n"},
           {{"."}, "“.” could not be opened: Is a directory.\n"},
           {{"--resources", "nowhere", "take.wav"},
            "Preparing audio…\n“afconvert” could not be started: No such file or directory.\n"},
           {{"--output", "take.wav", "take.wav"}, "“take.wav” could not be created: Not a directory.\n"}}) {
    const ProgramResult result = driver(scratch, refused);
    EXPECT_EQ(result.status, 1) << testing::PrintToString(refused);
    EXPECT_EQ(result.errors, message);
    EXPECT_EQ(result.output, "");
  }
  EXPECT_THAT(entries(scratch.path()), UnorderedElementsAre("take.wav"));
}

/// zarnet-prepare while its converter runs, which goes on for ten minutes.
class InterruptedDriver {
 public:
  InterruptedDriver() {
    writeTake(scratch / "take.wav");
    std::filesystem::create_directory(scratch / "resources");
    const auto converter = writeFile(scratch / "resources/afconvert",
                                     "#!/bin/sh\necho $$ >number\nmv number child\nexec sleep 600\n");
    std::filesystem::permissions(converter, std::filesystem::perms::owner_all);
    const std::string place = scratch.path().string();
    program.emplace(Arguments{"env", "-C", place, "TMPDIR=" + place, "sh", "-c", "exec \"$@\" 2>errors", "sh",
                              ZARNET_DRIVER, "--resources", "resources", "take.wav", "take.wav"});
    if (waitUntil([&] { return std::filesystem::exists(scratch / "child"); }))
      child = std::stoi(readFile(scratch / "child"));
  }

  bool workspaceIsGone() const {
    return std::ranges::none_of(entries(scratch.path()),
                                [](const std::string& name) { return name.starts_with("Brevolt-"); });
  }

  ScratchFolder scratch;
  std::optional<RunningProgram> program;
  pid_t child = -1;
};

TEST(Driver, leavesNothingBehindWhenASignalStopsIt) {
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    InterruptedDriver driver;
    ASSERT_NE(driver.child, -1);
    EXPECT_FALSE(driver.workspaceIsGone());
    driver.program->sendSignal(number);
    driver.program->sendSignal(number);  // some send it to the process and again to its group
    EXPECT_EQ(driver.program->exitStatus(std::chrono::seconds(60)), 128 + number);
    EXPECT_EQ(kill(driver.child, 0), -1);
    EXPECT_TRUE(driver.workspaceIsGone());
    EXPECT_EQ(readFile(driver.scratch / "errors"), "take.wav:\nPreparing audio…\nCancelled\n");
  }
}

}  // namespace

}  // namespace zarnet::test
