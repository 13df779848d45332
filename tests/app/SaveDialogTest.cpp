#include "app/sheets/SaveDialog.h"
#include "app/sheets/Sheet.h"
#include "app/sheets/WindowSheets.h"
#include "tests/support/EventLoop.h"
#include "tests/support/ScratchFolder.h"

#include <QAbstractButton>
#include <QFile>
#include <QLineEdit>
#include <QTest>

#include <gtest/gtest.h>

namespace zarnet {
namespace {

using namespace test;

/// A save panel of a real window, in a home of the test's own, used as a person uses it.
class SavePanels : public testing::Test {
 protected:
  SavePanels() {
    setenv("HOME", home.path().c_str(), 1);
    window.show();
  }
  ~SavePanels() override { setenv("HOME", formerHome.c_str(), 1); }

  void open(const QString& name) {
    answer.reset();
    sheets.show(SavePanel{"Save", name, "mp3"}, [this](auto file) {
      answer = file.value_or("dismissed");
      shown = field().text();
    });
    dialog = nullptr;
    for (auto* each : window.findChildren<SaveDialog*>()) {
      if (each->isVisible()) dialog = each;
    }
    ASSERT_TRUE(dialog != nullptr);
    ASSERT_TRUE(eventually([&] { return dialog->isActiveWindow(); }));
  }
  QLineEdit& field() const { return *dialog->findChild<QLineEdit*>(); }
  /// Presses a button of the panel, or of the question above it.
  void press(const QString& text) const {
    QAbstractButton* wanted = nullptr;
    ASSERT_TRUE(eventually([&] {
      for (auto* button : dialog->findChildren<QAbstractButton*>()) {
        if (button->isVisible() && button->isEnabled() && button->text().remove(u'&') == text)
          wanted = button;
      }
      return wanted != nullptr;
    })) << text.toStdString();
    QTest::mouseClick(wanted, Qt::LeftButton);
    runPendingEvents();
  }

  const ScratchFolder home;
  const std::string formerHome = std::getenv("HOME");
  QWidget window;
  WindowSheets sheets{&window};
  SaveDialog* dialog = nullptr;
  std::optional<std::filesystem::path> answer;
  QString shown;  ///< by the field, when the answer came
};

TEST_F(SavePanels, NameTheFileThatTheirFieldShows) {
  std::filesystem::create_directory(home / "below");
  const struct {
    QString typed;
    std::filesystem::path file;
  } cases[] = {
      {R"(Song (12" Mix) - MP3 320 kbps.mp3)", home / R"(Song (12" Mix) - MP3 320 kbps.mp3)"},
      {R"("quoted" "twice".mp3)", home / R"("quoted" "twice".mp3)"},
      {":name.mp3", home / ":name.mp3"},
      {" *?%41\\& .mp3", home / " *?%41\\& .mp3"},
      {"~name.mp3", home / "~name.mp3"},
      {"Nacht – 夜 🎵.mp3", home / "Nacht – 夜 🎵.mp3"},
      {"no extension", home / "no extension.mp3"},
      {"another.Extension", home / "another.Extension"},
      {"below/x.mp3", home / "below/x.mp3"},
      {"~/below/x.mp3", home / "below/x.mp3"},
      {"/nowhere/x.mp3", "/nowhere/x.mp3"},
  };
  for (const bool offered : {true, false}) {
    for (const auto& [typed, file] : cases) {
      open(offered ? typed : "offered.mp3");
      field().selectAll();
      if (!offered) QTest::keyClicks(&field(), typed.left(1)), field().insert(typed.mid(1));
      EXPECT_EQ(field().text(), typed);
      press("Save");
      EXPECT_EQ(answer, file);
      EXPECT_TRUE(QFile::encodeName(shown).endsWith(file.filename().c_str())) << "as shown";
    }
  }
}

TEST_F(SavePanels, AskBeforeTheyNameAFileThatExists) {
  writeFile(home / ":old.mp3", "old");
  open(":old.mp3");
  press("Save");
  auto* question = dialog->findChild<AlertSheet*>();
  ASSERT_TRUE(question != nullptr);
  EXPECT_EQ(question->accessibleName(), "“:old.mp3” already exists.");
  QTest::keyClick(question, Qt::Key_Return);
  runPendingEvents();
  EXPECT_FALSE(answer.has_value()) << "nothing is replaced by mistake";
  EXPECT_EQ(dialog->findChild<AlertSheet*>(), nullptr);
  press("Save");
  press("Replace");
  EXPECT_EQ(answer, home / ":old.mp3");
}

TEST_F(SavePanels, EnterAFolderThatIsNamedAndKeepTheNameThatWasOffered) {
  std::filesystem::create_directory(home / "below");
  open("x.mp3");
  field().setText("below");
  QTest::keyClick(&field(), Qt::Key_Return);
  EXPECT_FALSE(answer.has_value());
  EXPECT_EQ(field().text(), "x.mp3");
  press("Save");
  EXPECT_EQ(answer, home / "below/x.mp3");
  open("x.mp3");
  press("Cancel");
  EXPECT_EQ(answer, "dismissed");
}

TEST_F(SavePanels, CutANameThatIsTooLongAtACharacterAndShowItFirst) {
  const QString flag = "🇫🇷";  // one character, 8 bytes
  const QString end = " kbps.mp3";
  const auto cut = [](const QString& name) { return fittingFileName(name).toUtf8(); };
  EXPECT_EQ(cut(flag.repeated(31)), flag.repeated(31).toUtf8()) << "248 bytes";
  EXPECT_EQ(cut(flag.repeated(1000) + ".mp3"), (flag.repeated(30) + ".mp3").toUtf8());
  EXPECT_EQ(cut("ab" + flag.repeated(31) + end), ("ab" + flag.repeated(30) + ".mp3").toUtf8());
  EXPECT_EQ(cut(QString(300, u'n')).size(), 248);
  EXPECT_EQ(cut("." + QString(300, u'n')).size(), 248) << "no extension";
  EXPECT_EQ(cut("title. " + QString(300, u'n')).size(), 248) << "no extension either";

  open(QString(300, u'e') + ".mp3");
  const QString fitting = QString(244, u'e') + ".mp3";
  EXPECT_EQ(field().text(), fitting);
  field().setText("below/" + QString(300, u'e') + ".mp3");
  press("Save");
  EXPECT_FALSE(answer.has_value()) << "nobody has seen the name yet";
  EXPECT_EQ(field().text(), "below/" + fitting);
  press("Save");
  EXPECT_EQ(answer, home / "below" / fitting.toStdString());
}

}  // namespace
}  // namespace zarnet
