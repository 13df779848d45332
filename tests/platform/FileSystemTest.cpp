#include "platform/FileHandle.h"
#include "platform/FileSystem.h"
#include "platform/PlatformError.h"
#include "tests/support/Failures.h"
#include "tests/support/ScratchFolder.h"

#include <gtest/gtest.h>

namespace zarnet {

namespace fs = std::filesystem;

TEST(FileSystem, NamesTheFileAndTheReasonOfEachFailure) {
  const test::ScratchFolder scratch;
  const fs::path file = test::writeFile(scratch / "file", "content");
  const auto expectFailure = [](const auto& action, const std::string& sentence) {
    EXPECT_EQ(test::failureOf<PlatformError>(action), sentence);
  };
  expectFailure([&] { createFolders(file / "in\xFFner"); },
                "“in�ner” could not be created: Not a directory.");
  expectFailure([&] { moveFile(scratch / "none", file); },
                "“none” could not be moved: No such file or directory.");
  expectFailure([&] { folderEntries(file); }, "“file” could not be listed: Not a directory.");
  expectFailure([&] { removeAll("/proc/self/fdinfo"); },
                "“fdinfo” could not be removed: Operation not permitted.");
  expectFailure([&] { FileHandle::createForWriting("/proc"); },
                "“proc” could not be opened: Is a directory.");
  expectFailure([&] { FileHandle::createForWriting("/dev/full").write("x", 1); },
                "“full” could not be written: No space left on device.");
}

TEST(FileSystem, RemovesLinksAndNotWhatTheyPointTo) {
  const test::ScratchFolder scratch;
  createFolders(scratch / "folder" / "inner");
  const fs::path kept = test::writeFile(scratch / "kept", "content");
  fs::create_directory_symlink(scratch.path(), scratch / "folder" / "inner" / "link");
  fs::create_symlink(scratch / "nowhere", scratch / "folder" / "dangling");
  removeAll(scratch / "folder");
  EXPECT_FALSE(fs::exists(scratch / "folder"));
  EXPECT_TRUE(fs::exists(kept));
}

}  // namespace zarnet
