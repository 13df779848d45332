#pragma once

#include <chrono>
#include <functional>
#include <string>

#include <sys/types.h>

namespace zarnet::test {

/// Starts the session's accessibility bus and waits until it answers, so that programs that are started then
/// find it.
void wakeAccessibilityBus();

/// Reads and uses a running program's windows through the accessibility bus, as a screen reader does. It
/// finds controls by role ("push button", "slider", "label", "text", …; empty for any) and by name, among
/// those that are showing. Needs a session bus in the environment. Operations wait for what they need and
/// fail the test, naming what is missing, when it does not come.
class ScreenReader {
 public:
  /// Looks only at the program with this process number.
  explicit ScreenReader(pid_t program);

  /// Waits until something of this name is showing; false when it does not come.
  bool sees(const std::string& name, const std::string& role = "",
            std::chrono::seconds limit = std::chrono::seconds(60)) const;
  /// Whether it is showing now.
  bool seesNow(const std::string& name, const std::string& role = "") const;

  /// Presses a button or chooses a menu item, once it is enabled.
  void press(const std::string& name, const std::string& role = "") const;
  /// Whether a control says that it is selected.
  bool isSelected(const std::string& name) const;
  /// Replaces the content of the first text field that is showing.
  void type(const std::string& text) const;
  /// Every showing control as a line "role: name [states]", for messages and for comparisons.
  std::string transcript() const;

 private:
  pid_t program;
};

}  // namespace zarnet::test
