#include "tests/support/Signals.h"
#include "tests/support/StandIns.h"

#include <csignal>
#include <fstream>
#include <set>

#include <gmock/gmock.h>

namespace zarnet::test {

namespace {

using testing::HasSubstr;

/// zarnet-prepare with these arguments, words of a shell, in `folder`, which it uses for temporary files too.
std::vector<std::string> driverLine(const ScratchFolder& folder, const std::string& arguments) {
  const std::string place = folder.path().string();
  return {"env", "-C", place, "TMPDIR=" + place, "sh", "-c", "exec \"$0\" " + arguments, ZARNET_DRIVER};
}

/// The names of what lies in a folder, in the order of their bytes, one on a line.
std::string entries(const std::filesystem::path& folder) {
  return runProgram({"env", "LC_ALL=C", "ls", "-A", folder.string()}).output;
}

/// The programs that run in this folder, by name.
std::multiset<std::string> programsIn(const ScratchFolder& folder) {
  std::multiset<std::string> programs;
  for (const auto& process : std::filesystem::directory_iterator("/proc")) {
    std::error_code gone;
    if (std::filesystem::read_symlink(process.path() / "cwd", gone) != folder.path()) continue;
    std::string name;
    std::getline(std::ifstream(process.path() / "comm"), name);
    programs.insert(name);
  }
  return programs;
}

void writeTake(const std::filesystem::path& path) {
  std::filesystem::create_directories(path.parent_path());
  writeWave(path, music(44100, 1, 1.5), SampleType::int16);
}

}  // namespace

TEST(Driver, GivesTheCheckRecordAndTheFilesOfEachCodec) {
  const std::tuple<std::string, std::string, std::string, std::string> cases[] = {
      {"", "AAC-256", ".m4a", "\"matched\": true"},
      {"--codec MP3 --bitrate=24 --no-match", "MP3-24", ".mp3", "\"loudnessLossy\": 0.0"},
      {"--codec='Ogg Vorbis' --bitrate 128", "Ogg Vorbis-128", ".ogg", "\"offsetSamples\": 0"},
  };
  for (const auto& [options, stem, extension, line] : cases) {
    // Two file systems, as a temporary folder in memory makes them.
    const ScratchFolder scratch;
    const ScratchFolder temporary("/dev/shm");
    writeTake(scratch / "-a \xff take.1.wav");
    const std::string place = scratch.path().string();
    const ProgramResult result = runProgram(
        driverLine(temporary, options + " --output " + place + "/out '" + place + "/-a \xff take.1.wav'"));
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.errors, HasSubstr("Preparing audio…\nCreating the comparison…\nAligning playback"));
    const std::filesystem::path results = scratch / "out" / "-a \xff take.1";
    EXPECT_EQ(entries(results),
              stem + "-check.json\n" + stem + ".caf\n" + stem + extension + "\noriginal.wav\n");
    EXPECT_EQ(result.output, readFile(results / (stem + "-check.json")));
    EXPECT_THAT(result.output, HasSubstr("\"originalFrames\": 72000,\n"));
    EXPECT_THAT(result.output, HasSubstr(line));
    EXPECT_EQ(entries(temporary.path()), "");
  }
}

TEST(Driver, GoesOnAfterAFailureAndNumbersEqualNames) {
  const ScratchFolder scratch;
  for (const char* source : {"a/take.wav", "out/take 2/take.wav", "-take.wav"})
    writeTake(scratch / source);
  // Left by somebody else.
  std::filesystem::create_directory(scratch / "out/take");
  writeFile(scratch / "out/take/notes.txt", "mine");
  const ProgramResult result = runProgram(driverLine(
      scratch,
      "--codec 'Ogg Vorbis' --output out -- a/take.wav 'missing\nfile.wav' 'out/take 2/take.wav' -take.wav"));
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.errors, HasSubstr("\nmissing file.wav:\n“missing file.wav” could not be opened: No such "
                                       "file or directory.\nout/take 2/take.wav:\nPreparing audio…\n"));
  EXPECT_EQ(entries(scratch / "out"), "-take\ntake\ntake 2\ntake 3\n");
  EXPECT_EQ(readFile(scratch / "out/take/notes.txt"), "mine");
  EXPECT_EQ(entries(scratch / "out/take 2"), "take.wav\n");
  std::string records;
  for (const char* folder : {"take", "take 3", "-take"})
    records += readFile(scratch / "out" / folder / "Ogg Vorbis-256-check.json");
  EXPECT_EQ(result.output, records);
}

TEST(Driver, TellsWrongUsageFromWhatCannotBePrepared) {
  const ScratchFolder scratch;
  writeTake(scratch / "take.wav");
  const std::string usage = "\nusage: zarnet-prepare [--codec AAC|MP3|\"Ogg Vorbis\"]";
  const std::tuple<std::string, int, std::string> cases[] = {
      {"", 2, usage},
      {"--unknown take.wav", 2, usage},
      {"--bitrate 256k take.wav", 2, usage},
      {"--no-match=yes take.wav", 2, usage},
      {"--bitrate 8 take.wav", 1, "Choose a supported format and bitrate.\n"},
      {"--resources no take.wav", 1, "“afconvert” could not be started: No such file or directory.\n"},
      {"--output take.wav take.wav", 1, "“take.wav” could not be created: Not a directory.\n"},
  };
  for (const auto& [arguments, status, message] : cases) {
    const ProgramResult result = runProgram(driverLine(scratch, arguments));
    EXPECT_EQ(result.status, status) << arguments;
    EXPECT_THAT(result.errors, HasSubstr(message)) << arguments;
    EXPECT_EQ(result.output, "");
  }
  EXPECT_EQ(entries(scratch.path()), "take.wav\n");
}

TEST(Driver, LeavesNothingBehindWhenASignalStopsIt) {
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    const ScratchFolder scratch;
    writeTake(scratch / "take.wav");
    // A converter that goes on for ten minutes.
    runScript(scratch.path(), R"(
      mkdir resources
      printf '#!/bin/sh\necho $$ >number\nmv number child\nexec sleep 600\n' >resources/afconvert
      chmod +x resources/afconvert)");
    RunningProgram program(driverLine(scratch, "--resources resources take.wav take.wav 2>errors"));
    ASSERT_TRUE(waitUntil([&] { return std::filesystem::exists(scratch / "child"); }));
    program.sendSignal(number);
    program.sendSignal(number);  // some send it to the process and again to its group
    EXPECT_EQ(program.exitStatus(std::chrono::seconds(60)), 128 + number);
    EXPECT_EQ(kill(std::stoi(readFile(scratch / "child")), 0), -1);
    EXPECT_EQ(entries(scratch.path()), "child\nerrors\nresources\ntake.wav\n");
    EXPECT_EQ(readFile(scratch / "errors"), "take.wav:\nPreparing audio…\nCancelled\n");
  }
}

TEST(Driver, GoesOnWhenItsWorkspaceVanishes) {
  const ScratchFolder scratch;
  const StandIns programs;
  programs.replace("afconvert", R"([ -e gone ] || { touch gone; rm -r "$TMPDIR"/Brevolt-*; }; real "$@")");
  for (const char* const name : {"one.wav", "two.wav"})
    writeTake(scratch / name);
  const ProgramResult result = runProgram(
      driverLine(scratch, "--resources " + programs.lame().parent_path().string() + " one.wav two.wav"));
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.errors, testing::ContainsRegex("one.wav:\nPreparing audio…\n[^\n]*\ntwo.wav:\nPreparing "
                                                    "audio…\nCreating the comparison…\nAligning"));
  EXPECT_EQ(std::ranges::count(result.output, '{'), 1);
  EXPECT_EQ(entries(scratch.path()), "gone\none.wav\ntwo.wav\n");
}

TEST(Driver, TakesItsProgramsAlongWhenItIsKilled) {
  const ScratchFolder scratch;
  writeWave(scratch / "long.wav", noise(48000, 2, 48'000 * 120, 0.3, 1), SampleType::int16);
  for (const int number : {SIGKILL, SIGQUIT}) {
    RunningProgram program(driverLine(scratch, "--codec MP3 long.wav"));
    ASSERT_TRUE(waitUntil([&] { return programsIn(scratch).contains("lame"); }));
    program.sendSignal(number);
    EXPECT_TRUE(program.exitStatus(std::chrono::seconds(60)).has_value());
    EXPECT_TRUE(waitUntil([&] { return programsIn(scratch).empty(); }, std::chrono::seconds(5)));
  }
}

}  // namespace zarnet::test
