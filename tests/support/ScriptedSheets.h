#pragma once

#include "desktop/Sheets.h"

namespace zarnet::test {

/// A window whose sheets are answered by the test: each one that is opened stands in its list with `done`,
/// which the test calls.
class ScriptedSheets : public Sheets {
 public:
  template <class Panel, class Answer>
  struct Shown {
    Panel panel;
    std::function<void(Answer)> done;
  };

  void show(const OpenPanel& panel, std::function<void(std::vector<std::filesystem::path>)> done) override {
    openPanels.push_back({panel, std::move(done)});
  }
  void show(const SavePanel& panel, std::function<void(std::optional<std::filesystem::path>)> done) override {
    savePanels.push_back({panel, std::move(done)});
  }
  void show(const Alert& alert, std::function<void(std::optional<std::size_t>)> done) override {
    alerts.push_back({alert, std::move(done)});
  }

  std::size_t count() const { return openPanels.size() + savePanels.size() + alerts.size(); }

  std::vector<Shown<OpenPanel, std::vector<std::filesystem::path>>> openPanels;
  std::vector<Shown<SavePanel, std::optional<std::filesystem::path>>> savePanels;
  std::vector<Shown<Alert, std::optional<std::size_t>>> alerts;
};

}  // namespace zarnet::test
