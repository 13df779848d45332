#pragma once

#include "app/screens/ModelView.h"

namespace zarnet {

class Button;

/// The results of a test of several tracks.
class TallyScreen : public Screen {
  Q_OBJECT

 public:
  explicit TallyScreen(NativeModel& model);
  QWidget* firstFocus() const override;

 private:
  QWidget* total(const QString& label);
  QWidget* rows();

  Button* const save;
};

}  // namespace zarnet
