#include "desktop/Defaults.h"
#include "platform/FileSystem.h"
#include "tests/support/ScratchFolder.h"

#include <optional>
#include <string>

#include <gmock/gmock.h>

namespace zarnet {
namespace {

using test::ScratchFolder;
using test::writeFile;

TEST(Defaults, KeepValuesWithTheirTypes) {
  ScratchFolder folder;
  const Defaults defaults(folder / "new folder" / "defaults.json");
  defaults.setBoolean("off", false);
  defaults.setBoolean("on", true);
  defaults.setText("word", "false");
  defaults.setText("Ünicode 🎧", "\"quoted\"\n");
  const Defaults again(folder / "new folder" / "defaults.json");
  EXPECT_EQ(again.boolean("off"), false);
  EXPECT_EQ(again.boolean("on"), true);
  EXPECT_EQ(again.boolean("word"), std::nullopt) << "a text is no boolean";
  EXPECT_EQ(again.text("word"), "false");
  EXPECT_EQ(again.text("off"), std::nullopt);
  EXPECT_EQ(again.text("Ünicode 🎧"), "\"quoted\"\n");
  again.setText("off", "on");
  EXPECT_EQ(defaults.text("off"), "on") << "the last type counts";
  EXPECT_EQ(defaults.boolean("missing"), std::nullopt);
  EXPECT_THAT(folderEntries(folder / "new folder"), testing::SizeIs(1));
}

TEST(Defaults, ReadADamagedFileAsOneWithoutValuesAndReplaceItOnTheNextWrite) {
  for (const std::string& damage :
       {std::string(), std::string("{\"liquidGlass\": fal"), std::string("[true]"), std::string("\"text\""),
        std::string("\0\xff\xfe", 3), std::string(5000, '['), std::string(3'000'000, ' ') + "{}"}) {
    ScratchFolder folder;
    const Defaults defaults(writeFile(folder / "defaults.json", damage));
    EXPECT_EQ(defaults.boolean("liquidGlass"), std::nullopt);
    defaults.setBoolean("liquidGlass", false);
    EXPECT_EQ(defaults.boolean("liquidGlass"), false);
  }
}

}  // namespace
}  // namespace zarnet
