// Files and text that everything above uses.

#include "system/DisplayText.h"
#include "system/FileHandle.h"
#include "system/FileSystem.h"
#include "system/PlatformError.h"
#include "tests/support/Failures.h"
#include "tests/support/ScratchFolder.h"

#include <thread>

namespace zarnet {

namespace fs = std::filesystem;

TEST(FileSystem, NamesTheFileAndTheReasonOfEachFailure) {
  const test::ScratchFolder scratch;
  const fs::path file = test::writeFile(scratch / "file", "content");
  const std::pair<std::function<void()>, std::string> cases[] = {
      {[&] { createFolders(file / "in\xFFner"); }, "“in�ner” could not be created: Not a directory."},
      {[&] { moveFile(scratch / "none", file); }, "“none” could not be moved: No such file or directory."},
      {[&] { folderEntries(file); }, "“file” could not be listed: Not a directory."},
      {[] { removeAll("/proc/self/fdinfo"); }, "“fdinfo” could not be removed: Operation not permitted."},
      {[] { FileHandle::createForWriting("/dev/full").write("x", 1); },
       "“full” could not be written: No space left on device."},
  };
  for (const auto& [action, sentence] : cases)
    EXPECT_EQ(test::failureOf<PlatformError>(action), sentence);
}

TEST(FileSystem, RemovesLinksAndNotWhatTheyPointTo) {
  const test::ScratchFolder scratch;
  createFolders(scratch / "folder" / "inner");
  const fs::path kept = test::writeFile(scratch / "kept", "content");
  fs::create_directory_symlink(scratch.path(), scratch / "folder" / "inner" / "link");
  removeAll(scratch / "folder");
  EXPECT_FALSE(fs::exists(scratch / "folder"));
  EXPECT_TRUE(fs::exists(kept));
}

TEST(FileSystem, RemovesWhatSomebodyElseRemovesAndFillsMeanwhile) {
  const test::ScratchFolder scratch;
  const fs::path folder = scratch / "folder";
  for (int round = 0; round < 10; ++round) {
    for (int i = 0; i < 50; ++i) {
      createFolders(folder / std::to_string(i));
      test::writeFile(folder / std::to_string(i) / "file", "");
    }
    const std::jthread filling([&] {
      for (int i = 0; i < 50; ++i)
        std::ofstream(folder / std::to_string(i) / "late");
    });
    const std::jthread removing([&] { EXPECT_NO_THROW(removeAll(folder)); });
    EXPECT_NO_THROW(removeAll(folder));
  }
  EXPECT_FALSE(fs::exists(folder));
}

TEST(Text, FormatsNumbersAndReplacesOnlyTheBytesOfAPathThatAreNoCharacter) {
  const std::pair<double, std::string> numbers[] = {
      {44.1, "44.1"}, {22.05, "22.05"}, {96, "96"}, {999'999.5, "1e+06"}, {1e-5, "1e-05"}};
  for (const auto& [number, text] : numbers)
    EXPECT_EQ(formatG(number), text);
  EXPECT_EQ(displayText("Žluťoučký 👩‍👩‍👧/a\xE2\x82/\xED\xA0\x80\xF4\x8F\xBF\xBF"),
            "Žluťoučký 👩‍👩‍👧/a��/���\U0010FFFF");
}

}  // namespace zarnet
