#include "results/ResultsImage.h"
#include "tests/model/ModelFixture.h"

namespace zarnet {
namespace {

using namespace test;

class Export : public Models {};

TEST_F(Export, TellsWhyAFileCouldNotBeWrittenAndLosesNothing) {
  begin({"X", "Y"});
  ASSERT_TRUE(prepared());
  model->exportAudio();
  const auto old = writeFile(scratch / "old.m4a", "old");
  const std::string longName(300, 'n');
  const std::pair<std::filesystem::path, std::string> cases[] = {
      {scratch / "vanished" / "new.m4a", "“new.m4a” could not be written: No such file or directory."},
      {scratch / longName, "“" + longName + "” could not be written: File name too long."}};
  for (const auto& [place, sentence] : cases) {
    sheets.savePanels.at(0).done(place);
    EXPECT_EQ((*model->error)->toStdString(), sentence);
    EXPECT_TRUE(std::filesystem::exists(*model->exportURL));
  }
  std::filesystem::remove(*model->exportURL);
  sheets.savePanels.at(0).done(old);
  EXPECT_EQ(model->error, "“AAC-256.m4a” could not be opened: No such file or directory.");
  EXPECT_EQ(readFile(old), "old");
}

TEST_F(Export, SavesTheResultsAsTheyWereWhenTheUserAsked) {
  model->answers = {Vote{QUuid::createUuid(), "X", "A", "A"}, Vote{QUuid::createUuid(), "Y", "same", "B"}};
  const QByteArray image = model->resultsPNG();
  EXPECT_EQ(image, renderResultsPNG({{"X", "A", "A"}, {"Y", "same", "B"}}, "AAC", 256, true));
  model->saveResults();
  model->back();
  sheets.savePanels.at(0).done(scratch / "results.png");
  EXPECT_EQ(readFile(scratch / "results.png"), image.toStdString());
  sheets.savePanels.at(0).done(scratch / "gone" / "results.png");
  EXPECT_EQ(model->error, "“results.png” could not be written: No such file or directory.");
}

}  // namespace
}  // namespace zarnet
