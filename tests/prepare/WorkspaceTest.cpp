#include "audio/AppError.h"
#include "prepare/AudioPreparer.h"
#include "system/FileSystem.h"
#include "system/UUID.h"
#include "tests/support/Failures.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/Wait.h"

#include <cstdlib>
#include <thread>

#include <gtest/gtest.h>

namespace zarnet {

namespace fs = std::filesystem;

namespace {

/// Another temporary folder for this process.
class TemporaryFolder {
 public:
  explicit TemporaryFolder(const fs::path& path) { setenv("TMPDIR", path.c_str(), 1); }
  ~TemporaryFolder() { before.empty() ? unsetenv("TMPDIR") : setenv("TMPDIR", before.c_str(), 1); }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

 private:
  const std::string before = getenv("TMPDIR") == nullptr ? "" : getenv("TMPDIR");
};

}  // namespace

TEST(Workspace, GoesWithTheNextStartWhenItsProcessWasKilled) {
  const test::ScratchFolder scratch;
  const TemporaryFolder temporary(scratch.path());
  const fs::path left = scratch / ("Brevolt-" + newUUID());
  createFolders(left / "id");
  test::writeFile(left / "id" / "original.wav", "content");
  const AudioPreparer living("/nowhere/lame");
  const fs::path link = scratch / ("Brevolt-" + newUUID());
  const fs::path kept[] = {scratch / "Brevolt-notes", scratch / ("Other-" + newUUID()), living.directory,
                           scratch / "elsewhere" / ("Brevolt-" + newUUID())};
  for (const fs::path& folder : kept)
    createFolders(folder / "content");
  fs::create_directory_symlink(kept[0], link);
  AudioPreparer("/nowhere/lame");  // ends when its search has
  // The other one may have found it first.
  EXPECT_TRUE(test::waitUntil([&] { return !fs::exists(left); }));
  for (const fs::path& folder : kept)
    EXPECT_TRUE(fs::exists(folder / "content")) << folder;
  EXPECT_TRUE(fs::is_symlink(link));
}

TEST(Workspace, OfALivingProcessIsNeverTouched) {
  const test::ScratchFolder scratch;
  const TemporaryFolder temporary(scratch.path());
  std::vector<std::jthread> starts;
  for (int thread = 0; thread < 8; ++thread) {
    starts.emplace_back([] {
      for (int start = 0; start < 50; ++start) {
        AudioPreparer preparer("/nowhere/lame");
        preparer.run("/bin/true", {});  // its log lies in the workspace
      }
    });
  }
  starts.clear();
  EXPECT_TRUE(fs::is_empty(scratch.path()));
}

TEST(Workspace, DiscardsOnlyAConversionFolderOfItsOwn) {
  AudioPreparer preparer("/nowhere/lame");
  const test::ScratchFolder outside;
  const fs::path workspace = preparer.directory;
  const std::string name = workspace.filename();
  const std::string root = workspace.string();
  const struct {
    std::string at;
    bool removesX;
    bool refused;
  } table[] = {
      {root + "/X/AAC-256.m4a", true, false},
      {root + "/X/missing", true, false},
      {root + "/../" + name + "/X/missing", true, false},
      {root + "/gone/missing", false, false},
      {root + "/link/missing", false, false},  // removes the link
      {root + "/X/Y/missing", false, true},
      {root + "/X", false, true},
      {root, false, true},
      {root + "/../missing", false, true},
      {root + "x/X/missing", false, true},
      {outside.path().string() + "/X/missing", false, true},
      {"X/missing", false, true},
  };
  const fs::path kept = test::writeFile(outside / "kept", "content");
  for (const auto& [at, removesX, refused] : table) {
    createFolders(workspace / "X" / "Y");
    test::writeFile(workspace / "X" / "AAC-256.m4a", "content");
    fs::remove(workspace / "link");
    fs::create_directory_symlink(outside.path(), workspace / "link");
    EXPECT_EQ(test::failureOf<AppError>([&, &place = at] { preparer.discardConversion(place); }),
              refused ? "Refusing to remove audio outside Zarnet’s temporary folder." : "")
        << at;
    EXPECT_EQ(fs::exists(workspace / "X"), !removesX) << at;
    EXPECT_TRUE(fs::exists(kept)) << at;
  }
}

}  // namespace zarnet
