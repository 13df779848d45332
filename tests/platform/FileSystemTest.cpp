#include "platform/FileHandle.h"
#include "platform/FileSystem.h"
#include "platform/PlatformError.h"
#include "tests/support/Failures.h"
#include "tests/support/ScratchFolder.h"

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

namespace zarnet {

namespace {

namespace fs = std::filesystem;

}  // namespace

TEST(FileSystem, StandardizesByNameAlone) {
  const char* const table[][2] = {
      {"", ""},
      {"/", "/"},

      {"/a/b", "/a/b"},
      {"/a/b/", "/a/b"},
      {"/a//b///", "/a/b"},
      {"/a/./b/.", "/a/b"},
      {"/a/b/..", "/a"},
      {"/a/x/../b", "/a/b"},
      {"/..", "/"},
      {"/../a", "/a"},
      {"a/..", "."},
      {"a/../", "."},
      {"../a/", "../a"},
      {"/a/..b/", "/a/..b"},
  };
  for (const auto& [given, expected] : table)
    EXPECT_EQ(standardized(given).native(), expected) << given;
}

TEST(FileSystem, NamesTheFileAndTheReasonOfEachFailure) {
  const test::ScratchFolder scratch;
  const fs::path file = test::writeFile(scratch / "file", "content");
  createFolders(scratch / "folder" / "inner");
  createFolders(scratch / "folder");
  const auto expectFailure = [](const auto& action, const std::string& sentence) {
    EXPECT_EQ(test::failureOf<PlatformError>(action), sentence);
  };
  expectFailure([&] { createFolders(file); }, "“file” could not be created: Not a directory.");
  expectFailure([&] { createFolders(file / "in\xFFner"); },
                "“in�ner” could not be created: Not a directory.");
  expectFailure([&] { moveFile(scratch / "none", file); },
                "“none” could not be moved: No such file or directory.");
  expectFailure([&] { folderEntries(file); }, "“file” could not be listed: Not a directory.");
  expectFailure([&] { removeAll("/proc/self/fdinfo"); },
                "“fdinfo” could not be removed: Operation not permitted.");
  expectFailure([&] { FileHandle::openForReading(scratch / "none"); },
                "“none” could not be opened: No such file or directory.");
  expectFailure([&] { FileHandle::openForReading(scratch / "folder"); },
                "“folder” could not be opened: Is a directory.");
  expectFailure([&] { FileHandle::createForWriting(scratch / "folder"); },
                "“folder” could not be opened: Is a directory.");
  expectFailure([&] { FileHandle::createForWriting("/dev/full").write("x", 1); },
                "“full” could not be written: No space left on device.");
  expectFailure([&] { throw systemError(file, "could not be tried", 12345); },
                "“file” could not be tried: Error 12345.");
}

TEST(FileSystem, RemovesLinksAndNotWhatTheyPointTo) {
  const test::ScratchFolder scratch;
  createFolders(scratch / "outside");
  const fs::path kept = test::writeFile(scratch / "outside" / "kept", "content");
  createFolders(scratch / "folder" / "inner");
  fs::create_directory_symlink(scratch / "outside", scratch / "folder" / "inner" / "link");
  fs::create_symlink(scratch / "nowhere", scratch / "folder" / "dangling");
  removeAll(scratch / "folder");
  EXPECT_FALSE(fs::exists(scratch / "folder"));
  EXPECT_TRUE(fs::exists(kept));
  removeAll(scratch / "folder");  // nothing there is no error
}

}  // namespace zarnet
