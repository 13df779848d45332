#pragma once

#include "desktop/Signal.h"
#include "model/NativeModel.h"

#include <QWidget>
#include <functional>
#include <vector>

namespace zarnet {

/// A widget that follows the model. What it shows is told to it as followers, at any time; a change of the
/// model marks it dirty, and its followers run once in the next turn of the event loop, however many
/// properties changed. While it is hidden they wait until it is shown. What they disable or hide does not
/// pass the focus on: `NativeRoot` finds a place for it. Interface thread.
class ModelView : public QWidget {
  Q_OBJECT

 public:
  /// The model outlives this object.
  explicit ModelView(NativeModel& model, QWidget* parent = nullptr);

  /// Brings it up to date now, if it is not.
  void refresh();

 protected:
  /// Runs `follower` now, and after any change but one of `position` alone.
  void follow(std::function<void()> follower);
  /// Runs `follower` now, and after any change.
  void followPosition(std::function<void()> follower);

  void showEvent(QShowEvent* event) override;
  bool focusNextPrevChild(bool next) override;

  NativeModel& model;

 private:
  void changed(const Property& property);

  std::vector<std::function<void()>> followers;
  std::vector<std::function<void()>> positionFollowers;
  bool dirty = false;
  bool positionDirty = false;
  bool refreshing = false;
  Subscription subscription;
};

/// One of the screens that the window shows, by the model's stage.
class Screen : public ModelView {
  Q_OBJECT

 public:
  using ModelView::ModelView;

  /// What takes the focus when the screen's stage begins.
  virtual QWidget* firstFocus() const = 0;
  /// What takes it when the control that had it was disabled or hidden meanwhile.
  virtual QWidget* nextFocus() const { return firstFocus(); }
};

}  // namespace zarnet
