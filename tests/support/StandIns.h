#pragma once

#include "tests/support/ScratchFolder.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace zarnet::test {

/// A resources folder whose programs write down how they are called and then become the real ones.
class StandIns {
 public:
  StandIns();

  std::filesystem::path lame() const { return folder / "lame"; }
  /// The name of each program that was started since the last question, followed by its arguments.
  std::vector<std::vector<std::string>> calls();
  /// Makes the program a shell script that is written down likewise. Inside it, `real` runs the real program
  /// with the arguments that are given to it.
  void replace(const std::string& program, std::string_view script) const;
  void remove(const std::string& program) const { std::filesystem::remove(folder / program); }

 private:
  ScratchFolder folder;
};

}  // namespace zarnet::test
