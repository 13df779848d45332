#pragma once

#include "app/screens/ModelView.h"

namespace zarnet {

class SegmentedPicker;
class Switch;

/// The content of the settings window: the theme and translucency. Both write the model at once. 480 × 246.
class NativeSettings : public ModelView {
  Q_OBJECT

 public:
  /// The model outlives this object.
  explicit NativeSettings(NativeModel& model, QWidget* parent = nullptr);

 private:
  SegmentedPicker* theme;
  Switch* glass;
};

}  // namespace zarnet
