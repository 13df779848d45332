#include "desktop/AtomicFile.h"
#include "desktop/Defaults.h"
#include "platform/FileSystem.h"
#include "platform/PlatformError.h"
#include "tests/support/Failures.h"
#include "tests/support/ScratchFolder.h"

#include <csignal>

#include <gmock/gmock.h>
#include <sys/resource.h>

namespace zarnet {
namespace {

using namespace test;
using std::filesystem::perms;

TEST(WriteAtomically, ReplacesTheFileItselfAndKeepsItsPermissionsAndLinksToIt) {
  const ScratchFolder folder;
  const auto file = writeFile(folder / "results.png", "old");
  create_hard_link(file, folder / "another name");
  permissions(file, perms::owner_read | perms::owner_write | perms::group_read);
  create_symlink(file, folder / "link");
  writeAtomically(folder / "link", "new");
  EXPECT_TRUE(is_symlink(folder / "link"));
  EXPECT_EQ(readFile(file), "new");
  EXPECT_EQ(readFile(folder / "another name"), "old") << "the old content was overwritten in place";
  EXPECT_EQ(status(file).permissions(), perms::owner_read | perms::owner_write | perms::group_read);
}

TEST(WriteAtomically, SaysInOneSentenceWhyItCouldNotAndLeavesTheOldFileIntact) {
  const ScratchFolder folder;
  writeFile(folder / "results.png", "old");
  create_directory(folder / "folder");
  const auto before = folderEntries(folder.path());
  const std::string longName(256, 'n');
  const std::pair<std::string, std::string> cases[] = {
      {"gone/results.png", "“results.png” could not be written: No such file or directory."},
      {"folder", "“folder” could not be written: Is a directory."},
      {longName, "“" + longName + "” could not be written: File name too long."},
      {"results.png", "“results.png” could not be written: File too large."}};
  rlimit usual{};
  getrlimit(RLIMIT_FSIZE, &usual);
  const rlimit noRoomForAll = {4096, usual.rlim_max};
  std::signal(SIGXFSZ, SIG_IGN);
  setrlimit(RLIMIT_FSIZE, &noRoomForAll);
  for (const auto& [name, sentence] : cases) {
    const std::string content(name == "results.png" ? 100'000 : 1, 'n');
    const auto write = [&, &file = name] { writeAtomically(folder / file, content); };
    EXPECT_EQ(failureOf<PlatformError>(write), sentence);
  }
  setrlimit(RLIMIT_FSIZE, &usual);
  EXPECT_EQ(readFile(folder / "results.png"), "old");
  EXPECT_THAT(folderEntries(folder.path()), testing::UnorderedElementsAreArray(before));
}

TEST(Defaults, KeepValuesWithTheirTypesAndReplaceADamagedFile) {
  const ScratchFolder folder;
  const Defaults defaults(folder / "new folder" / "defaults.json");
  for (const std::string& damage : {std::string(), std::string("{\"off\": fal"), std::string("[true]"),
                                    std::string("\0\xff\xfe", 3), std::string(5000, '[')}) {
    defaults.setBoolean("off", true);
    writeFile(folder / "new folder" / "defaults.json", damage);
    EXPECT_EQ(defaults.boolean("off"), std::nullopt) << damage;
    defaults.setBoolean("off", false);
    defaults.setText("Ünicode 🎧", "\"quoted\"\n");
    EXPECT_EQ(defaults.boolean("off"), false) << damage;
    EXPECT_EQ(defaults.text("off"), std::nullopt) << damage;
    EXPECT_EQ(defaults.text("Ünicode 🎧"), "\"quoted\"\n") << damage;
  }
}

}  // namespace
}  // namespace zarnet
