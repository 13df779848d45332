#include "app/AppDelegate.h"

#include "app/CloseRequests.h"
#include "app/NativeRoot.h"
#include "app/WindowFit.h"
#include "app/screens/NativeAcknowledgements.h"
#include "app/screens/NativeSettings.h"
#include "app/sheets/Sheet.h"
#include "app/style/Motion.h"
#include "app/style/Symbol.h"
#include "app/style/Typography.h"
#include "prepare/Resources.h"
#include "system/UserError.h"

#include <QAction>
#include <QApplication>
#include <QDesktopServices>
#include <QFile>
#include <QIcon>
#include <QMenu>
#include <QMenuBar>
#include <QMetaObject>
#include <QMimeData>
#include <QPixmap>
#include <QScreen>
#include <QUrl>
#include <QVBoxLayout>
#include <QWindow>
#include <cmath>

namespace zarnet {

namespace {

constexpr int contentWidth = 940;
constexpr int contentHeight = 520;
constexpr double screenInset = 8;
constexpr int fitDelay = 60;  // ms
constexpr int fitMilliseconds = 220;

QScreen* screenOf(const QWidget& window) {
  return window.screen() != nullptr ? window.screen() : QGuiApplication::primaryScreen();
}

void bringToFront(QWidget& window) {
  window.show();
  window.raise();
  window.activateWindow();
}

}  // namespace

AppDelegate::AppDelegate(std::filesystem::path resourcesFolder) : resources(std::move(resourcesFolder)) {
  pendingResize.setSingleShot(true);
  pendingResize.setInterval(fitDelay);
  connect(&pendingResize, &QTimer::timeout, this, [this] { resizeNow(pendingHeight); });
  resizing.setDuration(fitMilliseconds);
  resizing.setEasingCurve(QEasingCurve::InOutQuad);
  connect(&resizing, &QVariantAnimation::valueChanged, this,
          [this](const QVariant& step) { window->place(step.toRect().topLeft(), step.toRect().size()); });
}

AppDelegate::~AppDelegate() {
  subscriptions.clear();
  resizing.stop();
  settings.reset();
  closeRequests.reset();
  window.reset();
  if (model) model->window = nullptr;
}

bool AppDelegate::applicationDidFinishLaunching() {
  const QPixmap icon(QFile::decodeName((resources / "Zarnet.png").c_str()));
  if (!icon.isNull()) QGuiApplication::setWindowIcon(icon);
  try {
    model = std::make_unique<NativeModel>(resources);
  } catch (const std::exception& error) {
    launchAlert = std::make_unique<AlertSheet>(nullptr, QStringLiteral("Unable to open Zarnet"),
                                               QString::fromStdString(errorDescription(error)),
                                               QStringList(QStringLiteral("OK")));
    launchAlert->setAttribute(Qt::WA_DeleteOnClose, false);
    connect(launchAlert.get(), &QDialog::finished, this, &AppDelegate::quit);
    launchAlert->open();
    return false;
  }
  animations = std::make_unique<PortalSetting>(
      QStringLiteral("org.gnome.desktop.interface"), QStringLiteral("enable-animations"),
      QDBusConnection::sessionBus(),
      [](const QVariant& wanted) { setMotionAllowed(wanted.typeId() != QMetaType::Bool || wanted.toBool()); },
      0);
  window = std::make_unique<MainWindow>();
  buildMenuBar();
  buildWindow();
  return true;
}

void AppDelegate::buildMenuBar() {
  QMenuBar* bar = window->menuBar();
  bar->setFont(textFont(TextStyle::callout));
  const auto item = [this](QMenu* menu, const QString& text, const QKeySequence& key, auto action) {
    auto* entry = new QAction(text, menu);
    entry->setShortcut(key);
    entry->setShortcutContext(Qt::ApplicationShortcut);  // the one menu bar serves all windows
    connect(entry, &QAction::triggered, this, action);
    menu->addAction(entry);
    return entry;
  };

  QMenu* application = bar->addMenu(QStringLiteral("Zarnet"));
  item(application, QStringLiteral("About Zarnet"), {}, [this] { about(); });
  item(application, QStringLiteral("Acknowledgements…"), {}, [this] { showAcknowledgements(); });
  item(application, QStringLiteral("Donate…"), {}, [this] { donate(); });
  application->addSeparator();
  item(application, QStringLiteral("Settings…"), QKeySequence(Qt::CTRL | Qt::Key_Comma), [this] {
    showSettings();
  })->setIcon(symbolIcon(QStringLiteral("gearshape")));
  application->addSeparator();
  QAction* quitItem =
      item(application, QStringLiteral("Quit Zarnet"), QKeySequence(Qt::CTRL | Qt::Key_Q), [] { quit(); });
  // A sheet keeps the menu bar from being used, and this item with it, unless it has the item too.
  connect(qApp, &QGuiApplication::focusWindowChanged, this, [quitItem] {
    if (QWidget* active = QApplication::activeWindow()) active->addAction(quitItem);
  });

  QMenu* file = bar->addMenu(QStringLiteral("File"));
  importItem = item(file, QStringLiteral("Import Audio…"), QKeySequence(Qt::CTRL | Qt::Key_O),
                    [this] { importAudio(); });
  exportItem = item(file, QStringLiteral("Export Converted Audio…"),
                    QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_E), [this] { exportAudio(); });

  QMenu* edit = bar->addMenu(QStringLiteral("Edit"));
  item(edit, QStringLiteral("Copy"), QKeySequence(Qt::CTRL | Qt::Key_C), [this] { copyEdit("copy"); });
  item(edit, QStringLiteral("Paste"), QKeySequence(Qt::CTRL | Qt::Key_V), [this] { copyEdit("paste"); });
  item(edit, QStringLiteral("Select All"), QKeySequence(Qt::CTRL | Qt::Key_A),
       [this] { copyEdit("selectAll"); });

  QMenu* windows = bar->addMenu(QStringLiteral("Window"));
  item(windows, QStringLiteral("Minimize"), QKeySequence(Qt::CTRL | Qt::Key_M), [this] {
    window->showMinimized();
  })->setShortcutContext(Qt::WindowShortcut);
}

void AppDelegate::buildWindow() {
  sheets = std::make_unique<WindowSheets>(window.get());
  model->window = sheets.get();

  root = new NativeRoot(*model, [this](double height) { fitContent(height); });
  window->setCentralWidget(root);
  const int chrome = window->menuBar()->sizeHint().height();
  window->setFixedSize(contentWidth, contentHeight + chrome);
  connect(window.get(), &MainWindow::movedByUser, this, [this] { userMovedMainWindow = true; });
  connect(window.get(), &MainWindow::closed, this, &AppDelegate::quit);
  closeRequests = std::make_unique<CloseRequests>(*window, [] { quit(); });

  subscriptions.push_back(model->glass.subscribe([this](bool glass) { window->setBackdropVisible(glass); }));
  subscriptions.push_back(model->willChange.subscribe([this](const Property& property) {
    if (&property == &model->position || &property == &model->progress) return;
    QMetaObject::invokeMethod(this, &AppDelegate::validateMenus, Qt::QueuedConnection);
  }));
  validateMenus();

  // Decorations come once it is shown, and change what fits.
  connect(window.get(), &MainWindow::decorated, this, [this] { fitContent(pendingHeight); });
  const QRect frame = fittedFrame(window->frameGeometry().height(), true);
  window->place(frame.topLeft(), frame.size());
  bringToFront(*window);
}

void AppDelegate::fitContent(double height) {
  if (!std::isfinite(height) || height <= 0) return;
  pendingHeight = height;
  pendingResize.start();
}

QRect AppDelegate::fittedFrame(double height, bool centered) const {
  const QRect frame = window->frameGeometry();
  const QScreen* screen = screenOf(*window);
  if (screen == nullptr) return frame;
  const double bottom = QRectF(screen->geometry()).bottom();
  const QRectF visible =
      QRectF(screen->availableGeometry()).adjusted(screenInset, screenInset, -screenInset, -screenInset);
  const ScreenRect target =
      fittedMainWindowFrame(upwards(frame, bottom), upwards(visible, bottom), height, centered);
  return downwards(target, bottom).toRect();
}

void AppDelegate::resizeNow(double height) {
  resizing.stop();
  const QRect frame = window->frameGeometry();
  const int chrome = frame.height() - root->height();
  const QRect goal = fittedFrame(std::ceil(height) + chrome, !userMovedMainWindow);
  if (std::abs(frame.height() - goal.height()) <= 1 && std::abs(frame.left() - goal.left()) <= 1 &&
      std::abs(frame.bottom() - goal.bottom()) <= 1) {
    return;
  }
  const QSize size = goal.size() - window->decorations();
  if (!window->isVisible() || !motionAllowed()) return window->place(goal.topLeft(), size);
  resizing.setStartValue(QRect(frame.topLeft(), window->size()));
  resizing.setEndValue(QRect(goal.topLeft(), size));
  resizing.start();
}

bool AppDelegate::applicationShouldHandleReopen(bool) {
  if (window) {
    window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    bringToFront(*window);
  }
  return true;
}

void AppDelegate::reopen(const QVariantMap& platform) {
  // The toolkit presents this token to a Wayland compositor when a window asks for the focus.
  const QString token = platform.value(QStringLiteral("activation-token")).toString();
  if (!token.isEmpty()) qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
  applicationShouldHandleReopen(window && window->isVisible());
}

bool AppDelegate::openFiles(const QStringList& addresses, const QVariantMap& platform) {
  QMimeData files;
  files.setData(QStringLiteral("text/uri-list"), addresses.join(u'\n').toUtf8());
  if (root == nullptr || !carriesFiles(files) || !root->drop(droppedItems(files))) return false;
  reopen(platform);
  return true;
}

void AppDelegate::quit() {
  QApplication::exit();
}

void AppDelegate::applicationWillTerminate() {
  if (model) model->cleanup();
}

void AppDelegate::abandon() {
  applicationWillTerminate();
  model.reset();
}

void AppDelegate::importFiles(const std::vector<std::filesystem::path>& files) {
  if (model && !files.empty()) model->importFiles(files);
}

void AppDelegate::validateMenus() {
  for (QAction* item : {importItem, exportItem})
    item->setEnabled(validateMenuItem(item));
}

bool AppDelegate::validateMenuItem(const QAction* item) const {
  if (item == importItem) return model && *model->stage == Stage::setup && !model->importing && !model->busy;
  if (item == exportItem) return model && model->exportURL.has_value() && !model->busy;
  return true;
}

void AppDelegate::importAudio() {
  if (model) model->choose();
}

void AppDelegate::exportAudio() {
  if (model) model->exportAudio();
}

void AppDelegate::copyEdit(const char* operation) const {
  // The focused widget answers when it has such an operation, as texts and text fields do.
  QWidget* focused = QApplication::focusWidget();
  if (focused != nullptr && focused->metaObject()->indexOfMethod(QByteArray(operation) + "()") >= 0) {
    QMetaObject::invokeMethod(focused, operation);
  }
}

void AppDelegate::donate() {
  const QString address = QStringLiteral(ZARNET_DONATION_ADDRESS);
  const QUrl url(address, QUrl::StrictMode);
  if (url.isValid() && QDesktopServices::openUrl(url)) return;
  if (model) {
    model->error = QStringLiteral("Could not open the donation page. Visit ") + address +
                   QStringLiteral(" in your browser.");
  }
}

QWidget* AppDelegate::auxiliaryWindow(const QString& title, QWidget* content) const {
  auto* frame = new QWidget(
      nullptr, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
  frame->setAttribute(Qt::WA_QuitOnClose, false);
  frame->setWindowTitle(title);
  auto* column = new QVBoxLayout(frame);
  column->setContentsMargins(0, 0, 0, 0);
  column->setSizeConstraint(QLayout::SetFixedSize);
  column->addWidget(content);
  frame->adjustSize();
  if (const QScreen* screen = screenOf(*window)) {
    frame->move(screen->availableGeometry().center() - frame->rect().center());
  }
  return frame;
}

void AppDelegate::about() {
  if (!aboutPanel) {
    aboutPanel.reset(auxiliaryWindow(QStringLiteral("About Zarnet"),
                                     new AboutPanel(QApplication::applicationVersion(), QString())));
  }
  bringToFront(*aboutPanel);
}

void AppDelegate::showAcknowledgements() {
  if (!acknowledgements) {
    const bool standIn = converterProgram(resources) == resources / "afconvert";
    acknowledgements.reset(
        auxiliaryWindow(QStringLiteral("Acknowledgements"), new NativeAcknowledgements(standIn)));
  }
  bringToFront(*acknowledgements);
}

void AppDelegate::showSettings() {
  if (!settings) settings.reset(auxiliaryWindow(QStringLiteral("Settings"), new NativeSettings(*model)));
  bringToFront(*settings);
}

}  // namespace zarnet
