#pragma once

#include "desktop/Signal.h"
#include "model/NativeModel.h"

#include <QWidget>

namespace zarnet {

class SegmentedPicker;
class Switch;

/// The content of the settings window: the theme and translucency. Both write the model at once. 480 × 246.
class NativeSettings : public QWidget {
  Q_OBJECT

 public:
  /// The model outlives this object.
  explicit NativeSettings(NativeModel& model, QWidget* parent = nullptr);

 private:
  void refresh();

  NativeModel& model;
  SegmentedPicker* theme;
  Switch* glass;
  Subscription subscription;
};

}  // namespace zarnet
