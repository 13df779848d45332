#pragma once

#include "app/screens/ModelView.h"

namespace zarnet {

class Button;

/// The screen on which a test is put together: the tracks, the settings, and the button that starts it.
class SetupScreen : public Screen {
  Q_OBJECT

 public:
  explicit SetupScreen(NativeModel& model);
  QWidget* firstFocus() const override;
  QWidget* nextFocus() const override;

 private:
  QWidget* songPanel();
  QWidget* emptyPanel();
  QWidget* settingsRow();
  QWidget* startRow();

  Button* const choose;
  Button* const start;
};

}  // namespace zarnet
