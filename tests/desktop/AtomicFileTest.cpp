#include "desktop/AtomicFile.h"
#include "platform/FileSystem.h"
#include "platform/PlatformError.h"
#include "tests/support/Failures.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/ScratchFolder.h"

#include <filesystem>
#include <string>
#include <utility>

#include <gmock/gmock.h>

namespace zarnet {
namespace {

using std::filesystem::perms;
using test::readFile;
using test::ScratchFolder;
using test::writeFile;

TEST(WriteAtomically, ReplacesTheFileItselfAndKeepsItsPermissionsAndLinksToIt) {
  ScratchFolder folder;
  const auto file = writeFile(folder / "results.png", "old");
  const auto other = folder / "another name";
  std::filesystem::create_hard_link(file, other);
  std::filesystem::permissions(file, perms::owner_read | perms::owner_write | perms::group_read);
  writeAtomically(file, "new");
  EXPECT_EQ(readFile(file), "new");
  EXPECT_EQ(readFile(other), "old") << "the old content was overwritten in place";
  EXPECT_EQ(std::filesystem::status(file).permissions(),
            perms::owner_read | perms::owner_write | perms::group_read);
  std::filesystem::create_directory(folder / "linked");
  std::filesystem::create_symlink("../results.png", folder / "linked" / "link");
  writeAtomically(folder / "linked" / "link", "newer");
  EXPECT_TRUE(std::filesystem::is_symlink(folder / "linked" / "link"));
  EXPECT_EQ(readFile(file), "newer");
}

TEST(WriteAtomically, SaysInOneSentenceWhyItCouldNotAndLeavesTheOldFileIntact) {
  const std::string longName(256, 'n');
  const std::pair<std::string, std::string> cases[] = {
      {"gone/results.png", "“results.png” could not be written: No such file or directory."},
      {"results.png/x", "“x” could not be written: Not a directory."},
      {"folder", "“folder” could not be written: Is a directory."},
      {longName, "“" + longName + "” could not be written: File name too long."},
      {"results.png", "“results.png” could not be written: File too large."},
  };
  for (const auto& [name, sentence] : cases) {
    ScratchFolder folder;
    writeFile(folder / "results.png", "old");
    std::filesystem::create_directory(folder / "folder");
    const auto before = folderEntries(folder.path());
    const std::string content(name == "results.png" ? 100'000 : 1, 'n');
    {
      const test::FileSizeLimit noRoomForAll(4096);
      EXPECT_EQ(
          test::failureOf<PlatformError>([&, &file = name] { writeAtomically(folder / file, content); }),
          sentence);
    }
    EXPECT_EQ(readFile(folder / "results.png"), "old");
    EXPECT_THAT(folderEntries(folder.path()), testing::UnorderedElementsAreArray(before));
  }
}

}  // namespace
}  // namespace zarnet
