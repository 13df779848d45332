#include "platform/FileHandle.h"
#include "tests/model/ModelFixture.h"

#include <csignal>

namespace zarnet {
namespace {

using namespace test;
using testing::IsEmpty;

/// What a model does in a process of its own.
class Processes : public Models {
 protected:
  Processes() {
    model.reset();
    setenv("XDG_CONFIG_HOME", scratch.path().c_str(), 1);
  }
  ProgramResult host(const std::string& task) const {
    return runProgram({MODEL_HOST, programs.folder, task});
  }
  std::string settings() const { return host("settings").output; }
};

TEST_F(Processes, ReadTheSettingsThatAnotherHasLeft) {
  EXPECT_EQ(settings(), "glass system\n");
  EXPECT_EQ(host("set").status, 0);
  EXPECT_EQ(settings(), "plain dark\n");
  const auto file = scratch / "zarnet" / "defaults.json";
  writeFile(file, R"({"liquidGlass": "false", "appearance": "light"})");
  EXPECT_EQ(settings(), "glass light\n") << "a text is no boolean";
  writeFile(file, "{damaged");
  EXPECT_EQ(settings(), "glass system\n");
  EXPECT_EQ(host("set").status, 0);
  EXPECT_EQ(settings(), "plain dark\n");
}

TEST_F(Processes, QuitInTheMiddleOfAPreparationWithoutAChildOrAFolderLeft) {
  programs.hold(true);
  const std::string file = track("X").url.string();
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
    SCOPED_TRACE(number);
    std::filesystem::remove(programs.folder / "started");
    const FileHandle output = FileHandle::createForWriting(scratch / "said");
    RunningProgram program({MODEL_HOST, programs.folder, "prepare", file}, output.descriptor());
    ASSERT_TRUE(eventually(
        [&] { return programs.started() && readFile(programs.folder / "started").ends_with('\n'); }));
    EXPECT_EQ(workspace().size(), 1U);
    const pid_t child = std::stoi(readFile(programs.folder / "started"));
    EXPECT_EQ(kill(child, 0), 0);
    program.sendSignal(number);
    EXPECT_EQ(program.exitStatus(std::chrono::seconds(60)), 0);
    EXPECT_EQ(readFile(scratch / "said"), "ended\n");
    EXPECT_NE(kill(child, 0), 0);
    EXPECT_THAT(workspace(), IsEmpty());
  }
}

}  // namespace
}  // namespace zarnet
