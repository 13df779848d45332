#pragma once

// To be included by the file that holds a program's main().

/// Qt synchronises its own threads in ways that a thread sanitizer cannot see; what happens inside it and the
/// libraries that it stands on is not ours to judge. Our own threads meet in InterfaceQueue, which the
/// sanitizer does see through.
extern "C" const char* __tsan_default_suppressions();  // NOLINT(bugprone-reserved-identifier)

const char*
__tsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier,misc-definitions-in-headers)
  return "called_from_lib:libQt6Core.so\n"
         "called_from_lib:libQt6Gui.so\n"
         "called_from_lib:libQt6DBus.so\n"
         "called_from_lib:libdbus-1.so\n"
         "called_from_lib:libglib-2.0.so\n";
}
