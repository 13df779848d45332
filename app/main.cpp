#include "app/AppDelegate.h"
#include "app/style/ApplicationStyle.h"
#include "app/widgets/Accessibility.h"
#include "desktop/DisplayLoss.h"
#include "desktop/FirstInstance.h"
#include "desktop/QuitSignals.h"
#include "prepare/Resources.h"

#include <QApplication>
#include <QMetaObject>
#include <cstdio>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr char usage[] =
    "usage: zarnet [FILE…]\n"
    "Blind listening tests between a lossless recording and a lossy encoding of it.\n"
    "The files are imported once the window is up. A Zarnet that runs already takes them over, or\n"
    "comes to the front; while a test is under way there it takes none, and another window opens.\n"
    "  --help     shows this text\n"
    "  --version  shows the version\n";

/// What the desktop gave to this start, so that the window that it asks for may come to the front. The
/// toolkit takes it out of the environment.
QVariantMap platformData() {
  QVariantMap data;
  for (const auto& [key, variable] : {std::pair("activation-token", "XDG_ACTIVATION_TOKEN"),
                                      std::pair("desktop-startup-id", "DESKTOP_STARTUP_ID")}) {
    if (const QByteArray value = qgetenv(variable); !value.isEmpty())
      data[QString::fromLatin1(key)] = QString::fromUtf8(value);
  }
  return data;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::filesystem::path> files;
  bool options = true;
  for (int i = 1; i < argc; ++i) {
    const std::string argument = argv[i];
    if (options && argument == "--help") return std::fputs(usage, stdout) < 0;
    if (options && argument == "--version") return std::puts("zarnet " ZARNET_VERSION) < 0;
    if (options && argument == "--") {
      options = false;
    } else if (options && argument.size() > 1 && argument.starts_with('-')) {
      std::fprintf(stderr, "zarnet: unknown option %s\n%s", argv[i], usage);
      return 2;
    } else {
      std::error_code unknown;
      const std::filesystem::path file = std::filesystem::absolute(argument, unknown);
      files.push_back(unknown ? std::filesystem::path(argument) : file);
    }
  }

  const QVariantMap platform = platformData();
  zarnet::DisplayLoss displayLoss;
  int toolkitArguments = 1;  // none of what was typed: it would take options of its own out
  QApplication application(toolkitArguments, argv);
  QApplication::setApplicationName(QStringLiteral("Zarnet"));
  QApplication::setApplicationVersion(QStringLiteral(ZARNET_VERSION));
  QApplication::setDesktopFileName(QStringLiteral("org.zarnet.Zarnet"));
  QApplication::setQuitOnLastWindowClosed(true);
  zarnet::installAccessibility();
  zarnet::applyApplicationStyle();

  zarnet::FirstInstance instance;
  if (!instance.isFirst() && instance.ask(files, platform)) return 0;

  // Outlives the delegate: a second signal must not kill a process that is clearing up.
  const zarnet::QuitSignals signals([] { zarnet::AppDelegate::quit(); });
  zarnet::AppDelegate delegate(zarnet::resourcesFolder());
  displayLoss.opened([&] { delegate.abandon(); });
  const bool launched = delegate.applicationDidFinishLaunching();
  if (!launched) instance.release();
  instance.serve([&](const QVariantMap& data) { delegate.reopen(data); },
                 [&](const QStringList& addresses, const QVariantMap& data) {
                   return delegate.openFiles(addresses, data);
                 });
  QMetaObject::invokeMethod(
      &delegate, [&] { delegate.importFiles(files); }, Qt::QueuedConnection);
  const int status = QApplication::exec();
  instance.release();
  delegate.applicationWillTerminate();
  return launched ? status : 1;
}
