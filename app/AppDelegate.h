#pragma once

#include "app/MainWindow.h"
#include "app/sheets/WindowSheets.h"
#include "desktop/PortalSetting.h"
#include "desktop/Signal.h"
#include "model/NativeModel.h"

#include <QObject>
#include <QStringList>
#include <QTimer>
#include <QVariantAnimation>
#include <QVariantMap>
#include <filesystem>
#include <memory>
#include <vector>

class QAction;

namespace zarnet {

class AlertSheet;
class CloseRequests;
class NativeRoot;

/// The application around the model: it builds the menu bar and the main window, keeps the window fitted to
/// its content, opens the other windows, and cleans up on quit. Lives for the whole run. Interface thread.
class AppDelegate : public QObject {
  Q_OBJECT

 public:
  explicit AppDelegate(std::filesystem::path resources);
  ~AppDelegate() override;

  /// Starts up: icon, model, menu bar, main window. When the model cannot be made it opens an alert that says
  /// so and ends the event loop when it is dismissed, and returns false; nothing else is built then.
  bool applicationDidFinishLaunching();
  /// Brings the main window to the front; always true.
  bool applicationShouldHandleReopen(bool hasVisibleWindows);
  /// Ends the event loop, whatever is on screen: no window is asked, so that none can refuse.
  static void quit();
  /// Stops background work and the player and removes the temporary audio. Called once, when the application
  /// ends.
  void applicationWillTerminate();
  /// Instead of that when the process ends from within, as it does when the display goes away: the temporary
  /// workspace goes, too, and the windows, which nobody sees any more, are left as they are.
  void abandon();

  /// Imports the files given on the command line.
  void importFiles(const std::vector<std::filesystem::path>& files);
  /// Another start of the program asks for the window. `platform` holds what the desktop gave to that start.
  void reopen(const QVariantMap& platform);
  /// Another start of the program hands files over, by their addresses; false unless they could be dropped
  /// now.
  bool openFiles(const QStringList& addresses, const QVariantMap& platform);

  /// Fits the window to a content of this height, in points, 0.06 s later; further calls until then replace
  /// it. A height that is not finite or not above 0 is ignored.
  void fitContent(double height);

  // Menu actions.
  void about();
  void showAcknowledgements();
  void donate();
  void showSettings();
  void importAudio();
  void exportAudio();
  /// Whether the menu item of this action may be chosen now.
  bool validateMenuItem(const QAction* item) const;

 private:
  void buildMenuBar();
  void buildWindow();
  void resizeNow(double height);
  /// The frame that the main window should have for this height of the whole frame.
  QRect fittedFrame(double height, bool centered) const;
  QWidget* auxiliaryWindow(const QString& title, QWidget* content) const;
  void copyEdit(const char* operation) const;
  void validateMenus();

  const std::filesystem::path resources;
  std::unique_ptr<AlertSheet> launchAlert;  ///< only when the model could not be made
  std::unique_ptr<NativeModel> model;
  std::unique_ptr<MainWindow> window;
  std::unique_ptr<CloseRequests> closeRequests;
  std::unique_ptr<WindowSheets> sheets;
  std::unique_ptr<QWidget> settings;
  std::unique_ptr<QWidget> acknowledgements;
  std::unique_ptr<QWidget> aboutPanel;
  NativeRoot* root = nullptr;
  QAction* importItem = nullptr;
  QAction* exportItem = nullptr;
  std::vector<Subscription> subscriptions;

  std::unique_ptr<PortalSetting> animations;  ///< whether the desktop wants any

  QTimer pendingResize;
  double pendingHeight = 0;
  QVariantAnimation resizing;
  bool userMovedMainWindow = false;
};

}  // namespace zarnet
