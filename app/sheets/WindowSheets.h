#pragma once

#include "desktop/Sheets.h"

#include <QPointer>
#include <QWidget>

namespace zarnet {

/// The panels and alerts of a real window: window-modal dialogs that are opened, never run in a loop of their
/// own.
class WindowSheets : public Sheets {
 public:
  explicit WindowSheets(QWidget* window);

  void show(const OpenPanel& panel, std::function<void(std::vector<std::filesystem::path>)> done) override;
  void show(const SavePanel& panel, std::function<void(std::optional<std::filesystem::path>)> done) override;
  void show(const Alert& alert, std::function<void(std::optional<std::size_t>)> done) override;

 private:
  QPointer<QWidget> window;
};

}  // namespace zarnet
