#pragma once

#include <QString>
#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

namespace zarnet {

/// A panel in which the user chooses existing files.
struct OpenPanel {
  QString title;
  bool choosesMultiple = false;
  std::vector<QString> extensions;  ///< of the files that may be chosen, without the dot, in either case
};

/// A panel in which the user says where a new file goes.
struct SavePanel {
  QString title;
  QString name;       ///< in the name field; any text, also one that no file can be called
  QString extension;  ///< of the file's type, without the dot; empty for any kind of audio file
};

/// A question with buttons.
struct Alert {
  QString message;
  QString informativeText;
  std::vector<QString> buttons;  ///< the first one is the default
};

/// The main window as the model sees it: something that sheets hang from. A sheet is opened and the call
/// returns at once; `done` is called later, once, from the event loop, or never when the window goes first.
/// Interface thread.
class Sheets {
 public:
  virtual ~Sheets() = default;

  /// `done` gets the chosen locations in the panel's order; none when it was dismissed.
  virtual void show(const OpenPanel& panel, std::function<void(std::vector<std::filesystem::path>)> done) = 0;
  /// `done` gets the chosen location; none when the panel was dismissed. The panel has asked before it hands
  /// out the location of a file that exists.
  virtual void show(const SavePanel& panel,
                    std::function<void(std::optional<std::filesystem::path>)> done) = 0;
  /// `done` gets the position of the button that was pressed in `Alert::buttons`; none when the alert was
  /// dismissed otherwise.
  virtual void show(const Alert& alert, std::function<void(std::optional<std::size_t>)> done) = 0;

 protected:
  Sheets() = default;
  Sheets(const Sheets&) = default;
  Sheets& operator=(const Sheets&) = default;
};

}  // namespace zarnet
