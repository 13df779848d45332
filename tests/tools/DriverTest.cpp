#include "system/UUID.h"
#include "tests/support/Signals.h"
#include "tests/support/StandIns.h"

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <fstream>
#include <set>
#include <thread>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

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
    const std::filesystem::path results = scratch / "out" / "-a \xff take.1" / stem;
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
  EXPECT_EQ(entries(scratch / "out"), "-take\ntake\ntake 2\n");
  EXPECT_EQ(readFile(scratch / "out/take/notes.txt"), "mine");
  EXPECT_EQ(entries(scratch / "out/take 2"), "Ogg Vorbis-256\ntake.wav\n");
  std::string records;
  for (const char* folder : {"take", "take 2", "-take"})
    records += readFile(scratch / "out" / folder / "Ogg Vorbis-256/Ogg Vorbis-256-check.json");
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
      {"--by-path take.wav", 2, usage},
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

namespace {

const std::string mp3Set = "MP3-64-check.json\nMP3-64.caf\nMP3-64.mp3\noriginal.wav\n";

/// Makes renameat2 fail as on a file system that cannot exchange folders, in this thread and what it starts.
void forbidExchange() {
  sock_filter filter[] = {
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_renameat2, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EINVAL),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  };
  const sock_fprog program = {std::size(filter), filter};
  ASSERT_EQ(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), 0);
  ASSERT_EQ(prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program), 0);
}

/// A folder with a take and an older set of results for it, each file of which holds "old".
class OlderSet : public testing::Test {
 protected:
  OlderSet() {
    writeTake(scratch / "take.wav");
    writeSet(place);
  }

  static void writeSet(const std::filesystem::path& folder) {
    std::filesystem::create_directories(folder);
    for (const char* name : {"MP3-64-check.json", "MP3-64.caf", "MP3-64.mp3", "original.wav"})
      writeFile(folder / name, "old");
  }
  ProgramResult prepare(const std::string& arguments = "take.wav") const {
    return runProgram(driverLine(scratch, "--codec MP3 --bitrate 64 --output out " + arguments));
  }
  void expectWholeSet(bool old) const {
    EXPECT_EQ(entries(scratch / "out/take"), "MP3-64\n");
    EXPECT_EQ(entries(place), mp3Set);
    for (const auto& file : std::filesystem::directory_iterator(place))
      EXPECT_EQ(readFile(file.path()) == "old", old) << file.path();
  }

  const ScratchFolder scratch;
  const std::filesystem::path place = scratch / "out/take/MP3-64";
};

}  // namespace

TEST_F(OlderSet, IsReplacedAsAWholeAlsoWhereFoldersCannotBeExchanged) {
  EXPECT_EQ(prepare().status, 0);
  expectWholeSet(false);
  writeSet(place);
  std::jthread([&] {
    forbidExchange();
    EXPECT_EQ(renameat2(AT_FDCWD, place.c_str(), AT_FDCWD, place.c_str(), RENAME_EXCHANGE), -1);
    EXPECT_EQ(prepare().status, 0);
  }).join();
  expectWholeSet(false);
}

TEST_F(OlderSet, StaysWholeWhenItIsNotReplaced) {
  const StandIns programs;
  programs.replace("lame", "exit 1");
  EXPECT_EQ(prepare("--resources " + programs.lame().parent_path().string() + " take.wav").status, 1);
  expectWholeSet(true);

  // One that was moved out of the way of a process that was killed then comes back.
  const std::string identity = newUUID();
  std::filesystem::rename(place, scratch / "out/take" / (".zarnet-old-MP3-64-" + identity));
  writeSet(scratch / "out/take" / (".zarnet-new-MP3-64-" + identity));
  EXPECT_EQ(prepare("--resources " + programs.lame().parent_path().string() + " take.wav").status, 1);
  expectWholeSet(true);
}

TEST_F(OlderSet, IsRefusedBeforeAnythingIsEncodedUnlessItCanBeReplaced) {
  const auto expectRefusal = [&](const std::string& sentence) {
    const ProgramResult result = prepare();
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, sentence + "\n");
  };
  writeFile(place / "notes.txt", "mine");
  expectRefusal("“MP3-64” could not be replaced: It holds “notes.txt”, which is not of a set of results.");
  std::filesystem::remove_all(place);
  std::filesystem::create_directories(place / "MP3-64.mp3");
  expectRefusal("“MP3-64” could not be replaced: It holds “MP3-64.mp3”, which is not of a set of results.");
  std::filesystem::remove_all(place);
  writeFile(place, "mine");
  expectRefusal("“MP3-64” could not be replaced: Not a directory.");
  std::filesystem::remove_all(scratch / "out/take");
  writeFile(scratch / "out/take", "mine");
  expectRefusal("“take” could not be created: Not a directory.");
  EXPECT_EQ(entries(scratch.path()), "out\ntake.wav\n");
}

TEST_F(OlderSet, IsPassedOverWhereItHoldsASource) {
  std::filesystem::rename(scratch / "take.wav", place / "original.wav");
  std::filesystem::create_symlink(place / "original.wav", scratch / "take.wav");
  const std::string source = readFile(place / "original.wav");
  EXPECT_EQ(prepare().status, 0);
  EXPECT_EQ(readFile(place / "original.wav"), source);
  EXPECT_EQ(entries(scratch / "out/take 2/MP3-64"), mp3Set);
}

TEST_F(OlderSet, GoesToOneOfTwoProcesses) {
  RunningProgram one(driverLine(scratch, "--codec MP3 --bitrate 64 --output out take.wav"));
  EXPECT_EQ(prepare().status, 0);
  EXPECT_EQ(one.exitStatus(std::chrono::seconds(60)), 0);
  expectWholeSet(false);
}

TEST_F(OlderSet, IsReplacedWithoutACheckRecordInTheWorkspace) {
  const StandIns programs;
  programs.replace("lame", R"(for last; do :; done; mkdir "${last%.mp3}-check.json"; real "$@")");
  const ProgramResult result = prepare("--resources " + programs.lame().parent_path().string() + " take.wav");
  EXPECT_EQ(result.status, 0);
  expectWholeSet(false);
  EXPECT_EQ(result.output, readFile(place / "MP3-64-check.json"));
}

TEST(Driver, KeepsFilesOfEqualNamesApartByTheirPaths) {
  const ScratchFolder scratch;
  for (int k = 0; k < 40; ++k) {
    const std::filesystem::path folder = scratch / "music" / std::to_string(k);
    std::filesystem::create_directories(folder);
    writeWave(folder / "take.wav", noise(48000, 1, 4800 + k, 0.3, 1), SampleType::int16);
  }
  runScript(scratch.path(), "find music -type f -print0 | TMPDIR=. xargs -0 -P 8 -n 1 '" ZARNET_DRIVER
                            "' --codec MP3 --bitrate 64 --by-path --output out >records");
  const std::string records = readFile(scratch / "records");
  for (int k = 0; k < 40; ++k) {
    const std::filesystem::path set =
        scratch / "out" / (scratch / "music").relative_path() / std::to_string(k) / "take.wav" / "MP3-64";
    EXPECT_EQ(entries(set), mp3Set);
    EXPECT_THAT(readFile(set / "MP3-64-check.json"),
                HasSubstr("\"originalFrames\": " + std::to_string(4800 + k) + ","));
    EXPECT_THAT(records, HasSubstr("\"originalFrames\": " + std::to_string(4800 + k) + ","));
  }
  EXPECT_EQ(entries(scratch.path()), "music\nout\nrecords\n");
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
