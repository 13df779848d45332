#include "audio/AppError.h"
#include "prepare/AudioPreparer.h"
#include "system/FileSystem.h"
#include "tests/support/Failures.h"
#include "tests/support/ScratchFolder.h"

#include <gtest/gtest.h>

namespace zarnet {

namespace fs = std::filesystem;

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
