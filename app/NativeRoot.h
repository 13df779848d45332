#pragma once

#include "app/FileDrop.h"
#include "app/screens/ModelView.h"

#include <QPointer>
#include <functional>
#include <utility>
#include <vector>

class QScrollArea;
class QVBoxLayout;

namespace zarnet {

class AlertSheet;
class BusySheet;
class ListenScreen;
class SetupScreen;
class TallyScreen;

/// The content of the main window: the screen of the model's stage in a scrolling frame, the files dropped
/// onto it, the progress sheet and the error alert. Interface thread.
class NativeRoot : public ModelView {
  Q_OBJECT

 public:
  /// `onContentHeight` is called whenever the height that the content wants, in points, has changed. The
  /// model outlives this object.
  NativeRoot(NativeModel& model, std::function<void(double)> onContentHeight, QWidget* parent = nullptr);

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
  Screen& screenOf(Stage stage);
  void showScreen();
  void announce();
  void showSheets();
  void keepFocus(QWidget* before);
  void focusOn(QWidget* control);
  void reportHeight();
  void setTargeted(bool targeted);
  bool takesDrops() const;
  /// Whether a drag may be dropped now: an import copies, it never takes a file away.
  bool takes(const QDropEvent& drag) const;

  const std::function<void(double)> onContentHeight;

  SetupScreen* setup = nullptr;  ///< the screens, each made when its stage first begins
  ListenScreen* listen = nullptr;
  TallyScreen* tally = nullptr;
  Screen* shown = nullptr;

  QScrollArea* scroll;
  QWidget* content;
  QVBoxLayout* page;
  QWidget* outline;
  BusySheet* busySheet = nullptr;
  QPointer<AlertSheet> alert;

  std::pair<Stage, std::int64_t> announced{Stage::setup, 0};  ///< stage and track that were announced last

  QPointer<QWidget> lostFocus;  ///< the control that had the focus until it was disabled or hidden
  bool focusIsLost = false;

  bool targeted = false;
  double reportedHeight = 0;
};

}  // namespace zarnet
