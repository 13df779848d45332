#pragma once

#include "app/FileDrop.h"
#include "desktop/Signal.h"
#include "model/NativeModel.h"

#include <QPointer>
#include <QString>
#include <QWidget>
#include <functional>
#include <map>
#include <vector>

class QScrollArea;
class QShortcut;
class QVBoxLayout;

namespace zarnet {

class AlertSheet;
class Button;
class BusySheet;
class Popover;

/// The content of the main window: the screen of the model's stage in a scrolling frame, the files dropped
/// onto it, the progress sheet and the error alert. It owns no test logic; every control reads the model or
/// calls one of its operations.
///
/// Each builder makes its widgets once and registers how they follow the model. A change of the model marks
/// the content dirty, and one refresh runs per turn of the event loop, however many properties changed; a
/// change of `position` alone touches the slider and the clock only. Interface thread.
class NativeRoot : public QWidget {
  Q_OBJECT

 public:
  /// `onContentHeight` is called whenever the height that the content wants, in points, has changed. The
  /// model outlives this object.
  NativeRoot(NativeModel& model, std::function<void(double)> onContentHeight, QWidget* parent = nullptr);
  ~NativeRoot() override;

  /// Takes dropped items: refuses them (false) unless files can be imported now; else loads every item and,
  /// when the last one has answered, imports those that are files in the order in which they were dropped.
  bool drop(const std::vector<std::shared_ptr<ItemProvider>>& providers);

 protected:
  void paintEvent(QPaintEvent*) override;
  void resizeEvent(QResizeEvent*) override;
  void changeEvent(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragLeaveEvent(QDragLeaveEvent*) override;
  void dropEvent(QDropEvent* event) override;

 private:
  struct Screen {
    QWidget* widget = nullptr;
    std::vector<std::function<void()>> followers;  ///< run after any change
    std::vector<std::function<void()>> ticks;      ///< run after a change of `position` alone, too
  };

  // The builders. Each makes its part of a screen and registers how it follows the model.
  QWidget* setup();
  QWidget* songPanel();
  QWidget* emptyPanel();
  QWidget* settingsRow();
  QWidget* startRow();
  QWidget* listen();
  QWidget* header();
  QWidget* currentTrack();
  QWidget* playback();
  QWidget* transport();
  QWidget* loopControls();
  QWidget* version(const QString& side);
  QWidget* question();
  QWidget* verdict();
  QWidget* preference(const QString& label, const QString& value);
  QWidget* tally();
  QWidget* total(const QString& label);

  void follow(std::function<void()> follower);
  void followPosition(std::function<void()> follower);

  void changed(const Property& property);
  void refresh();
  Screen& screenOf(Stage stage);
  void showScreen();
  void announce();
  void focusFirst();
  void showSheets();
  void reportHeight();
  void addShortcut(const QKeySequence& key, std::function<void()> action);
  void setTargeted(bool targeted);
  bool takesDrops() const;

  NativeModel& model;
  const std::function<void(double)> onContentHeight;
  Subscription subscription;

  std::map<Stage, Screen> screens;
  Screen* building = nullptr;
  Screen* shown = nullptr;
  std::vector<QShortcut*> shortcuts;  ///< active while a comparison is on screen

  QScrollArea* scroll;
  QWidget* content;
  QVBoxLayout* page;
  QWidget* outline;
  BusySheet* busySheet = nullptr;
  QPointer<AlertSheet> alert;
  Popover* popover = nullptr;
  Button* loopButton = nullptr;

  std::map<Stage, QWidget*> firstFocus;                       ///< what takes the focus when a stage begins
  std::pair<Stage, std::int64_t> announced{Stage::setup, 0};  ///< stage and track that were announced last

  bool showingLoop = false;
  bool targeted = false;
  bool dirty = false;
  bool positionOnly = true;
  double reportedHeight = 0;
};

}  // namespace zarnet
