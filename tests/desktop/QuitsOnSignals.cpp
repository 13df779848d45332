// A program without end that says "ready" and, when a signal asks it to quit, "orderly".

#include "desktop/QuitSignals.h"

#include <QCoreApplication>
#include <cstdio>

int main(int argc, char** argv) {
  const QCoreApplication application(argc, argv);
  const zarnet::QuitSignals signals([] { QCoreApplication::quit(); });
  std::puts("ready");
  std::fflush(stdout);
  const int status = QCoreApplication::exec();
  std::puts("orderly");
  return status;
}
