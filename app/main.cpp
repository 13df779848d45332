#include "app/AppDelegate.h"
#include "app/style/ApplicationStyle.h"
#include "app/widgets/Accessibility.h"
#include "desktop/QuitSignals.h"
#include "prepare/Resources.h"

#include <QApplication>
#include <QMetaObject>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include <xcb/xcb.h>

namespace {

constexpr char usage[] =
    "usage: zarnet [FILE…]\n"
    "Blind listening tests between a lossless recording and a lossy encoding of it.\n"
    "The files are imported once the window is up.\n"
    "  --help     shows this text\n"
    "  --version  shows the version\n";

bool isSet(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

/// Whether there is a display to open a window on; the toolkit would abort over one that does not answer.
bool displayAnswers() {
  if (isSet("WAYLAND_DISPLAY") || isSet("QT_QPA_PLATFORM")) return true;
  xcb_connection_t* display = xcb_connect(nullptr, nullptr);
  const bool answers = xcb_connection_has_error(display) == 0;
  xcb_disconnect(display);
  return answers;
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
  if (!displayAnswers()) {
    std::fputs("Zarnet needs a display to open its window; zarnet-prepare works without one.\n", stderr);
    return 1;
  }

  int toolkitArguments = 1;  // none of what was typed: it would take options of its own out
  QApplication application(toolkitArguments, argv);
  QApplication::setApplicationName(QStringLiteral("Zarnet"));
  QApplication::setApplicationVersion(QStringLiteral(ZARNET_VERSION));
  QApplication::setDesktopFileName(QStringLiteral("org.zarnet.Zarnet"));
  QApplication::setQuitOnLastWindowClosed(true);
  zarnet::installAccessibility();
  zarnet::applyApplicationStyle();

  // Outlives the delegate: a second signal must not kill a process that is clearing up.
  const zarnet::QuitSignals signals([] { zarnet::AppDelegate::quit(); });
  zarnet::AppDelegate delegate(zarnet::resourcesFolder());
  const bool launched = delegate.applicationDidFinishLaunching();
  QMetaObject::invokeMethod(
      &delegate, [&] { delegate.importFiles(files); }, Qt::QueuedConnection);
  const int status = QApplication::exec();
  delegate.applicationWillTerminate();
  return launched ? status : 1;
}
