// Every screen and every state of it, and the results image, as they are meant to look: each is drawn from
// fixed data and compared with the picture in this folder. `script/pictures` draws the pictures anew.

#include "app/MainWindow.h"
#include "app/NativeRoot.h"
#include "app/screens/NativeAcknowledgements.h"
#include "app/screens/NativeSettings.h"
#include "app/sheets/Popover.h"
#include "app/sheets/WindowSheets.h"
#include "app/style/ApplicationStyle.h"
#include "app/style/Motion.h"
#include "app/widgets/Spinner.h"
#include "results/ResultsImage.h"
#include "tests/support/EventLoop.h"
#include "tests/support/FakeAudioEngine.h"
#include "tests/support/ScratchFolder.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QDragEnterEvent>
#include <QFile>
#include <QImageWriter>
#include <QMimeData>
#include <QPainter>
#include <algorithm>
#include <cstring>

#include <gtest/gtest.h>

namespace zarnet {
namespace {

using namespace test;

constexpr int contentWidth = 940;
bool drawAnew = false;

// What is compared.

/// How far the colours of two pixels lie apart, in the channel in which they differ most.
int distance(QRgb a, QRgb b) {
  return std::max(
      {std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
}

/// How far a pixel lies from the one around it that differs most.
int contrastAround(const QImage& image, int x, int y) {
  int contrast = 0;
  for (int row = std::max(y - 1, 0); row <= std::min(y + 1, image.height() - 1); ++row) {
    for (int column = std::max(x - 1, 0); column <= std::min(x + 1, image.width() - 1); ++column)
      contrast = std::max(contrast, distance(image.pixel(x, y), image.pixel(column, row)));
  }
  return contrast;
}

/// The differing pixels in red on a faint copy of the reference; a null image when none differs. A pixel may
/// lie off by 2 and an eighth of the contrast around it: an edge may be smoothed otherwise, but not move, and
/// a plain ground keeps its colour.
QImage difference(const QImage& reference, const QImage& drawn) {
  QImage marked = reference.convertToFormat(QImage::Format_RGB32);
  bool differs = reference.size() != drawn.size();
  for (int y = 0; y < reference.height(); ++y) {
    for (int x = 0; x < reference.width(); ++x) {
      const QRgb pixel = reference.pixel(x, y);
      const int apart = drawn.valid(x, y) ? distance(pixel, drawn.pixel(x, y)) : 255;
      const bool off = apart > 2 && apart > 2 + contrastAround(reference, x, y) / 8;
      differs = differs || off;
      const int faint = 192 + qGray(pixel) / 4;
      marked.setPixel(x, y, off ? qRgb(220, 0, 0) : qRgb(faint, faint, faint));
    }
  }
  return differs ? marked : QImage();
}

void write(const QImage& picture, const QString& path) {
  QImageWriter file(path);
  file.setCompression(100);
  ASSERT_TRUE(file.write(picture)) << path.toStdString();
}

void compare(const QString& name, const QImage& drawn) {
  const QString reference = QStringLiteral(ZARNET_PICTURES "/%1.png").arg(name);
  if (drawAnew) {
    const QImage before(reference);
    if (before.isNull() || !difference(before, drawn).isNull()) write(drawn, reference);
    return;
  }
  const QString drawnPath = QStringLiteral(ZARNET_NEW_PICTURES "/%1.png").arg(name);
  const QString differencePath = QStringLiteral(ZARNET_NEW_PICTURES "/%1-difference.png").arg(name);
  QFile::remove(drawnPath);
  QFile::remove(differencePath);
  const QImage expected(reference);
  const QImage marked = difference(expected, drawn);
  if (!expected.isNull() && marked.isNull()) return;
  write(drawn, drawnPath);
  if (!marked.isNull()) write(marked, differencePath);
  ADD_FAILURE() << name.toStdString() << " looks otherwise than tests/pictures has it: see "
                << drawnPath.toStdString() << " and, in red, what differs in "
                << differencePath.toStdString();
}

// What is drawn.

const QString longTitle = QStringLiteral(
    "Concerto for Two Violins, Strings and Continuo in D minor, BWV 1043: Largo ma non tanto (Recorded Live "
    "at the "
    "Old Granary, Remastered from the First Generation Tapes)");

Song song(const QString& title, double duration, const QString& detail) {
  Song made;
  made.id = title.toStdString();
  made.title = made.trackTitle = title;
  made.detail = detail;
  made.duration = duration;
  return made;
}

Song tagged() {
  Song made = song("Sea Fever – Harbour at Dawn", 247, "24-bit / 96 kHz · FLAC");
  made.trackTitle = "Harbour at Dawn";
  made.artist = "Sea Fever";
  made.album = "Field Recordings";
  QImage cover(96, 96, QImage::Format_RGB32);
  cover.fill(QColor(214, 120, 70));
  QPainter painter(&cover);
  painter.fillRect(0, 56, 96, 40, QColor(42, 74, 110));
  painter.fillRect(60, 20, 16, 36, QColor(250, 214, 120));
  painter.end();
  made.artwork = cover;
  return made;
}

std::vector<Song> threeSongs() {
  return {tagged(), song("Field Recording 12", 61, "16-bit / 44.1 kHz · PCM"),
          song("Slow Movement", 1199, "24-bit / 48 kHz · Apple Lossless")};
}

Vote vote(const QString& title, const QString& choice, const QString& lossless) {
  return {QUuid::createUuid(), title, choice, lossless};
}

/// A main window around a model of which nothing moves by itself.
class Scene {
 public:
  Scene() {
    model.cleanup();  // ends the timer that follows the player
    window.setCentralWidget(root);
    window.setBackdropVisible(model.glass);
    window.move(100, 100);
    window.show();
  }

  /// A comparison as it stands when it has been loaded.
  void compare(const std::vector<Song>& songs, std::int64_t track = 0) {
    model.roundSongs = songs;
    model.index = track;
    model.lossless = "B";
    model.duration = songs.at(static_cast<std::size_t>(track)).duration;
    model.loopStart = 42;
    model.loopEnd = 54;
    model.originalDescription = songs.at(static_cast<std::size_t>(track)).detail;
    model.stage = Stage::listen;
  }
  void reveal(const QString& choice) {
    compare({tagged()});
    model.selected = "B";
    model.answers = {vote(model.roundSongs.at(0).title, choice, "B")};
    model.stage = Stage::reveal;
  }
  void click(const QString& text) {
    settle();
    for (auto* button : root->findChildren<QAbstractButton*>()) {
      if (button->isVisible() && button->text() == text) return button->click();
    }
    FAIL() << "no button " << text.toStdString();
  }
  void drag() {
    QMimeData files;
    files.setUrls({QUrl(QStringLiteral("file:///music/one.wav"))});
    QDragEnterEvent enter(QPoint(9, 9), Qt::CopyAction, &files, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(root, &enter);
  }

  /// Lets the window come to rest, as high as its content wants to be.
  void settle() {
    double before = -1;
    while (before != height) {
      before = height;
      if (height > 0) window.setFixedSize(contentWidth, static_cast<int>(std::ceil(height)));
      for (int turn = 0; turn < 6; ++turn)
        runPendingEvents();
    }
  }
  template <class Widget>
  static QWidget* shown() {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
      if (widget->isVisible() && qobject_cast<Widget*>(widget) != nullptr) return widget;
    }
    throw std::runtime_error("there is no such window");
  }

  ScratchFolder scratch;
  NativeModel model{ZARNET_RESOURCES, std::make_unique<FakeAudioEngine>(),
                    Defaults(scratch / "defaults.json")};
  MainWindow window;
  double height = 0;
  NativeRoot* root = new NativeRoot(model, [this](double now) { height = now; });
  WindowSheets sheets{&window};
};

/// What a widget looks like, on a ground of the window's colour.
QImage drawn(QWidget& widget, int scale) {
  for (auto* spinner : widget.findChildren<Spinner*>()) {
    QShowEvent begins;  // it stands where it begins
    QApplication::sendEvent(spinner, &begins);
  }
  QImage image(widget.size() * scale, QImage::Format_RGB32);
  image.setDevicePixelRatio(scale);
  image.fill(widget.palette().color(QPalette::Window));
  widget.render(&image);
  return image;
}

/// A state, and what is drawn of it: the main window unless `compose` returns another.
struct Picture {
  const char* name;
  std::function<QWidget*(Scene&)> compose;
  const char* alsoAtTwice = nullptr;  ///< the appearance in which it is drawn at scale 2, too
};

const Picture screens[] = {
    {"setup-empty", [](Scene&) { return nullptr; }},
    {"setup-one",
     [](Scene& scene) {
       scene.model.playlist = {tagged()};
       scene.model.codec = "Ogg Vorbis";
       scene.model.match = false;
       return nullptr;
     }},
    {"setup-three",
     [](Scene& scene) {
       scene.model.playlist = threeSongs();
       return nullptr;
     },
     "dark"},
    {"setup-long-titles",
     [](Scene& scene) {
       const QString word = QString(longTitle).remove(' ');
       scene.model.playlist = {song(longTitle, 1200, "24-bit / 192 kHz · FLAC"),
                               song(word, 5, "16-bit / 44.1 kHz · PCM"),
                               song("Two\nlines", 59, longTitle + longTitle)};
       scene.model.glass = false;
       return nullptr;
     }},
    {"setup-importing-first",
     [](Scene& scene) {
       scene.model.importing = true;
       return nullptr;
     }},
    {"setup-importing-more",
     [](Scene& scene) {
       scene.model.playlist = {tagged()};
       scene.model.importing = true;
       return nullptr;
     }},
    {"setup-dragged-over",
     [](Scene& scene) {
       scene.settle();
       scene.drag();
       return nullptr;
     }},
    {"before-you-listen",
     [](Scene& scene) {
       scene.model.playlist = threeSongs();
       scene.model.window = &scene.sheets;
       scene.model.start();
       return Scene::shown<QDialog>();
     }},
    {"busy",
     [](Scene& scene) {
       scene.model.busy = true;
       scene.model.progress = "Encoding MP3…";
       scene.settle();
       return Scene::shown<QDialog>();
     }},
    {"error-short",
     [](Scene& scene) {
       scene.model.error = "“missing.flac” could not be opened: No such file or directory.";
       scene.settle();
       return Scene::shown<QDialog>();
     }},
    {"error-long",
     [](Scene& scene) {
       QStringList lines;
       for (int i = 1; i <= 40; ++i)
         lines << QStringLiteral("take %1.mp3 is already lossy. Choose its original file.").arg(i);
       scene.model.error = lines.join("\n\n");
       scene.settle();
       return Scene::shown<QDialog>();
     }},
    {"listen-a",
     [](Scene& scene) {
       scene.compare({song("Field Recording 12", 61, "16-bit / 44.1 kHz · PCM")});
       return nullptr;
     }},
    {"listen-b",
     [](Scene& scene) {
       scene.compare(threeSongs());
       scene.model.selected = "B";
       scene.model.position = 83;
       scene.model.playing = true;
       return nullptr;
     },
     "light"},
    {"answered",
     [](Scene& scene) {
       scene.compare(threeSongs(), 2);
       scene.model.vote = "same";
       scene.model.volume = 0.25;
       scene.model.glass = false;
       scene.model.roundMatch = false;
       return nullptr;
     }},
    {"loop-on",
     [](Scene& scene) {
       scene.compare({song(longTitle, 61, "16-bit / 44.1 kHz · PCM")});
       scene.model.loop = true;
       return nullptr;
     }},
    {"loop-popover",
     [](Scene& scene) {
       scene.compare({tagged()});
       scene.click("Loop");
       scene.model.loop = true;
       scene.settle();
       return scene.window.findChild<Popover*>();
     }},
    {"reveal-lossless",
     [](Scene& scene) {
       scene.reveal("B");
       return nullptr;
     }},
    {"reveal-lossy",
     [](Scene& scene) {
       scene.reveal("A");
       return nullptr;
     }},
    {"reveal-same",
     [](Scene& scene) {
       scene.reveal("same");
       return nullptr;
     }},
    {"tally",
     [](Scene& scene) {
       scene.model.roundCodec = "MP3";
       scene.model.roundRate = 96;
       scene.model.answers = {vote("Sea Fever – Harbour at Dawn", "A", "A"), vote(longTitle, "A", "B"),
                              vote("Slow Movement", "same", "A"), vote("Field Recording 12", "B", "B")};
       scene.model.stage = Stage::tally;
       return nullptr;
     }},
    {"settings",
     [](Scene& scene) {
       auto* settings = new NativeSettings(scene.model, &scene.window);
       settings->show();
       scene.settle();
       return settings;
     }},
    {"acknowledgements",
     [](Scene& scene) {
       auto* credits = new NativeAcknowledgements(true, &scene.window);
       credits->show();
       scene.settle();
       return credits;
     }},
    {"about",
     [](Scene& scene) {
       auto* about = new AboutPanel("1.2.3", "45", &scene.window);
       about->show();
       scene.settle();
       return about;
     }},
};

class Screens : public testing::TestWithParam<Picture> {};

TEST_P(Screens, LookAsTheyShould) {
  const Picture& picture = GetParam();
  for (const char* appearance : {"light", "dark"}) {
    Scene scene;
    scene.model.appearance = appearance;
    QWidget* part = picture.compose(scene);
    scene.settle();
    QWidget& widget = part != nullptr ? *part : scene.window;
    const QString name = QStringLiteral("%1-%2").arg(picture.name, appearance);
    compare(name, drawn(widget, 1));
    if (picture.alsoAtTwice != nullptr && std::strcmp(picture.alsoAtTwice, appearance) == 0)
      compare(name + "@2", drawn(widget, 2));
  }
}

INSTANTIATE_TEST_SUITE_P(All, Screens, testing::ValuesIn(screens), [](const auto& picture) {
  std::string name = picture.param.name;
  std::erase(name, '-');
  return name;
});

TEST(ResultsPictures, LookAsTheyShould) {
  std::vector<TrackResult> twelve;
  for (int i = 1; i <= 12; ++i)
    twelve.push_back({QStringLiteral("Track %1").arg(i),
                      i % 3 == 0   ? "same"
                      : i % 2 == 0 ? "A"
                                   : "B",
                      i % 4 < 2 ? "A" : "B"});
  const struct {
    const char* name;
    std::vector<TrackResult> answers;
    QString codec;
    std::int64_t bitrate;
    bool matched;
  } cases[] = {
      {"results-one", {{"Song", "same", "B"}}, "Ogg Vorbis", 96, false},
      {"results-three",
       {{"Harbour at Dawn", "B", "B"}, {"Field Recording 12", "B", "A"}, {"Slow", "same", "A"}},
       "AAC",
       256,
       true},
      {"results-twelve", twelve, "MP3", 320, true},
      {"results-wrapped",
       {{longTitle, "A", "A"}, {QString(longTitle).remove(' '), "A", "B"}},
       "AAC",
       64,
       true},
      {"results-tie", {{"First", "A", "A"}, {"Second", "B", "A"}}, "MP3", 128, false},
  };
  for (const auto& [name, answers, codec, bitrate, matched] : cases)
    compare(name, QImage::fromData(renderResultsPNG(answers, codec, bitrate, matched))
                      .convertToFormat(QImage::Format_RGB32));
}

}  // namespace
}  // namespace zarnet

// `--draw` draws the pictures that look otherwise anew instead of comparing them.
int main(int argc, char** argv) {
  const zarnet::test::ScratchFolder home;
  for (const char* folder : {"HOME", "XDG_CONFIG_HOME", "XDG_RUNTIME_DIR"})
    setenv(folder, home.path().c_str(), 1);
  setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent", 1);
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
  testing::InitGoogleTest(&argc, argv);
  zarnet::drawAnew = argc > 1 && std::strcmp(argv[1], "--draw") == 0;
  const QApplication application(argc, argv);
  zarnet::setMotionAllowed(false);
  zarnet::applyApplicationStyle();
  return RUN_ALL_TESTS();
}
