#pragma once

#include "app/screens/ModelView.h"

namespace zarnet {

class Button;
class PlayButton;
class Popover;
class SelectableButton;

/// The screen of a comparison: the track, its playback, the two sides, and the question; in stage reveal the
/// truth and the verdict in place of the question. Space plays and pauses, the keys A and B choose the side
/// that is heard, wherever the focus is.
class ListenScreen : public Screen {
  Q_OBJECT

 public:
  explicit ListenScreen(NativeModel& model);
  QWidget* firstFocus() const override;
  QWidget* nextFocus() const override;

 private:
  QWidget* header();
  QWidget* currentTrack();
  QWidget* playback();
  QWidget* transport();
  QWidget* loopControls();
  QWidget* version(const QString& side);
  QWidget* question();
  QWidget* verdict();
  SelectableButton* preference(const QString& label, const QString& value);

  bool revealed() const { return *model.stage == Stage::reveal; }
  void toggleLoopControls();
  void addShortcut(const QKeySequence& key, std::function<void()> action);

  PlayButton* const play;
  Button* const loopButton;
  Button* const save;
  SelectableButton* firstAnswer = nullptr;
  Popover* popover = nullptr;  ///< made when it is first opened
  bool showingLoop = false;
};

}  // namespace zarnet
