#include "desktop/AtomicFile.h"
#include "desktop/InterfaceQueue.h"
#include "desktop/Published.h"
#include "desktop/Thumbnail.h"
#include "system/FileSystem.h"
#include "system/PlatformError.h"
#include "tests/support/EventLoop.h"
#include "tests/support/Failures.h"
#include "tests/support/ScratchFolder.h"

#include <QBuffer>
#include <QColorSpace>
#include <QPainter>

#include <gmock/gmock.h>
#include <sys/resource.h>

namespace zarnet {
namespace {

using namespace test;
using testing::ElementsAre;

TEST(InterfaceQueue, NeverRunsWorkAtOnceAndKeepsTheOrderThroughANestedEventLoop) {
  InterfaceQueue queue;
  std::vector<int> order;
  queue.post([&] {
    order.push_back(1);
    queue.post([&] { order.push_back(3); });
    runPendingEvents();
    order.push_back(4);
  });
  queue.post([&] { order.push_back(2); });
  EXPECT_TRUE(order.empty());
  ASSERT_TRUE(eventually([&] { return order.size() == 4; }));
  EXPECT_THAT(order, ElementsAre(1, 2, 3, 4));
}

TEST(Published, TellsObserversThenItsStreamThenTakesTheValueAlsoWhenItIsEqual) {
  std::vector<std::string> events;
  WillChange willChange;
  Published<std::string> name(willChange, "old", [&] { events.push_back("took " + *name); });
  const Subscription observer = willChange.subscribe([&](const Property& property) {
    EXPECT_EQ(&property, &name);
    events.push_back("still " + *name);
  });
  name.change([](std::string& value) { value.append("er"); });
  const Subscription stream =
      name.subscribe([&](const std::string& value) { events.push_back("gets " + value + " over " + *name); });
  name = "new";
  name = "new";
  name.change([](std::string& value) { value.append("er"); });
  EXPECT_THAT(events, ElementsAre("still old", "took older", "gets older over older",  //
                                  "still older", "gets new over older", "took new",    //
                                  "still new", "gets new over new", "took new",        //
                                  "still new", "gets newer over new", "took newer"));
}

TEST(Signal, AllowsReceiversToEndSubscribeAndRaiseAgainWhileTheyAreCalled) {
  Signal<int> signal;
  std::vector<int> heard;
  Subscription late;
  Subscription last;
  Subscription first = signal.subscribe([&](int value) {
    heard.push_back(value);
    first = {};
    last = {};
    late = signal.subscribe([&](int other) { heard.push_back(10 * other); });
    signal(2);
  });
  last = signal.subscribe([&](int) { ADD_FAILURE() << "has ended"; });
  signal(1);
  EXPECT_THAT(heard, ElementsAre(1, 20));
}

TEST(WriteAtomically, ReplacesTheFileItselfAndKeepsItsPermissionsAndLinksToIt) {
  const ScratchFolder folder;
  const auto file = writeFile(folder / "results.png", "old");
  permissions(file, std::filesystem::perms(0640));
  create_symlink(file, folder / "link");
  writeAtomically(folder / "link", "new");
  EXPECT_TRUE(is_symlink(folder / "link"));
  EXPECT_EQ(readFile(file), "new");
  EXPECT_EQ(status(file).permissions(), std::filesystem::perms(0640));
}

TEST(WriteAtomically, SaysInOneSentenceWhyItCouldNotAndLeavesTheOldFileIntact) {
  const ScratchFolder folder;
  writeFile(folder / "results.png", "old");
  const std::string longName(256, 'n');
  const std::pair<std::string, std::string> cases[] = {
      {"gone/results.png", "“results.png” could not be written: No such file or directory."},
      {longName, "“" + longName + "” could not be written: File name too long."},
      {"results.png", "“results.png” could not be written: File too large."}};
  rlimit usual{};
  getrlimit(RLIMIT_FSIZE, &usual);
  const rlimit noRoomForAll = {4096, usual.rlim_max};
  signal(SIGXFSZ, SIG_IGN);
  setrlimit(RLIMIT_FSIZE, &noRoomForAll);
  for (const auto& [name, sentence] : cases) {
    const std::string content(name == "results.png" ? 100'000 : 1, 'n');
    const auto write = [&, &file = name] { writeAtomically(folder / file, content); };
    EXPECT_EQ(failureOf<PlatformError>(write), sentence);
  }
  setrlimit(RLIMIT_FSIZE, &usual);
  EXPECT_EQ(readFile(folder / "results.png"), "old");
  EXPECT_THAT(folderEntries(folder.path()), ElementsAre(folder / "results.png"));
}

/// Red in the upper left quarter, blue elsewhere.
QImage marked(int width, int height) {
  QImage image(width, height, QImage::Format_RGB32);
  image.fill(Qt::blue);
  QPainter(&image).fillRect(0, 0, width / 2, height / 2, Qt::red);
  return image;
}

std::string encoded(const QImage& image, const char* format) {
  QBuffer buffer;
  buffer.open(QIODevice::WriteOnly);
  EXPECT_TRUE(image.save(&buffer, format));
  return buffer.data().toStdString();
}

/// A JPEG file with an Exif segment that states the orientation and may hold further bytes.
std::string orientedJPEG(const QImage& image, int orientation, const std::string& further = "") {
  const std::string exif = std::string("Exif\0\0", 6) + "MM" + bigEndian(42, 2) + bigEndian(8, 4) +
                           bigEndian(1, 2) + bigEndian(0x0112, 2) + bigEndian(3, 2) + bigEndian(1, 4) +
                           bigEndian(orientation, 2) + bigEndian(0, 2) + bigEndian(0, 4) + further;
  std::string file = encoded(image, "jpeg");
  return file.insert(2, "\xFF\xE1" + bigEndian(exif.size() + 2, 2) + exif);
}

/// A GIF file of these dimensions with a single pixel in it.
std::string tinyGIF(int width, int height) {
  return "GIF89a" + littleEndian(width, 2) + littleEndian(height, 2) +
         std::string("\x80\0\0\0\0\0\xFF\xFF\xFF,\0\0\0\0\1\0\1\0\0\2\2D\1\0;", 25);
}

TEST(Thumbnail, TurnsThePictureAsItStates) {
  const auto made = thumbnail(orientedJPEG(marked(1000, 500), 6), 256);
  ASSERT_TRUE(made);
  EXPECT_EQ(made->size(), QSize(128, 256));
  EXPECT_GT(made->pixelColor(96, 64).red(), 180) << "the red quarter comes to lie at the upper right";
  EXPECT_GT(made->pixelColor(32, 64).blue(), 180);
}

TEST(Thumbnail, IsNotMadeFromAPictureThatEndsEarly) {
  testing::internal::CaptureStderr();
  const QImage image = marked(400, 400);
  const std::string inside = encoded(marked(40, 40), "jpeg");
  for (const std::string& whole : {encoded(image, "jpeg"), orientedJPEG(image, 1, inside),
                                   encoded(image, "png"), encoded(image, "bmp"), tinyGIF(1, 1)}) {
    EXPECT_TRUE(thumbnail(whole + std::string(10, '\0'), 256)) << "padded";
    for (std::size_t parts = 0; parts < 20; ++parts)
      EXPECT_FALSE(thumbnail(std::string_view(whole).substr(0, whole.size() * parts / 20), 256)) << parts;
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(Thumbnail, IsMadeFromAJPEGWithStrayBytesOrWithoutItsEndMarker) {
  testing::internal::CaptureStderr();
  const std::string whole = encoded(marked(400, 400), "jpeg");
  std::string stray = whole;
  stray.insert(whole.find("\xFF\xDB"), "stray\xFF")
      .insert(whole.find("\xFF\xDA"), std::string("\0\xFF\0", 3));
  for (const std::string& file : {stray, whole.substr(0, whole.size() - 2)}) {
    const auto made = thumbnail(file, 256);
    ASSERT_TRUE(made);
    EXPECT_GT(made->pixelColor(250, 250).blue(), 240) << "the last pixels are there";
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(Thumbnail, HasTheColoursOfItsOwnSpace) {
  QImage image(8, 8, QImage::Format_RGB32);
  image.fill(QColor(200, 80, 60));
  image.setColorSpace(QColorSpace::DisplayP3);
  const QColor expected = image.convertedToColorSpace(QColorSpace::SRgb).pixelColor(4, 4);
  for (const char* format : {"png", "jpeg"}) {
    const auto made = thumbnail(encoded(image, format), 8);
    ASSERT_TRUE(made);
    EXPECT_NEAR(made->pixelColor(4, 4).red(), expected.red(), 2) << format;
    EXPECT_NEAR(made->pixelColor(4, 4).green(), expected.green(), 2) << format;
  }
}

TEST(Thumbnail, IsNotMadeWhereDecodingTakesTooMuch) {
  const auto scans = [](int count) {
    std::string file = encoded(QImage(1000, 1000, QImage::Format_RGB32), "jpeg");
    for (int i = 1; i < count; ++i)
      file += "\xFF\xDA";
    return file;
  };
  EXPECT_TRUE(thumbnail(encoded(QImage(6000, 5000, QImage::Format_Mono), "png"), 256));
  EXPECT_FALSE(thumbnail(encoded(QImage(6000, 5001, QImage::Format_Mono), "png"), 256));
  EXPECT_TRUE(thumbnail(encoded(QImage(6000, 5000, QImage::Format_Mono), "bmp"), 256));
  EXPECT_FALSE(thumbnail(encoded(QImage(6000, 5001, QImage::Format_Mono), "bmp"), 256));
  EXPECT_TRUE(thumbnail(scans(250), 256));
  EXPECT_FALSE(thumbnail(scans(251), 256));
  // A file of a few bytes that announces a great deal.
  EXPECT_FALSE(thumbnail(tinyGIF(20'000, 20'000), 256));
}

}  // namespace
}  // namespace zarnet
