#pragma once

#include "tests/support/Programs.h"

#include <sstream>

namespace zarnet::test {

/// A resources folder whose programs write down how they are called and then become the real ones.
class StandIns {
 public:
  StandIns() {
    for (const char* program : {"lame", "afconvert", "vorbis-tool"})
      replace(program, "exec " + resource(program).string() + R"( "$@")");
  }

  std::filesystem::path lame() const { return folder / "lame"; }

  /// Makes the program a shell script that is written down likewise. Inside it, `real` runs the real program
  /// with the arguments that are given to it.
  void replace(const std::string& program, const std::string& script) const {
    // One call is its name and arguments, each ended by a zero byte, and a record separator.
    const std::string record = "{ printf '%s\\0' " + program + R"( "$@"; printf '\036'; } >>"${0%/*}/calls")";
    const std::string real = "real() { " + resource(program).string() + " \"$@\"; }";
    writeFile(folder / program, "#!/bin/sh\n" + record + "\n" + real + "\n" + script + "\n");
    std::filesystem::permissions(folder / program, std::filesystem::perms::owner_all);
  }
  void remove(const std::string& program) const { std::filesystem::remove(folder / program); }

  /// The name of each program that was started since the last question, followed by its arguments.
  std::vector<std::vector<std::string>> calls() {
    std::vector<std::vector<std::string>> result;
    std::ifstream records(folder / "calls");
    for (std::string record; std::getline(records, record, '\036');) {
      std::istringstream words(record);
      result.emplace_back();
      for (std::string word; std::getline(words, word, '\0');)
        result.back().push_back(word);
    }
    std::filesystem::remove(folder / "calls");
    return result;
  }

 private:
  ScratchFolder folder;
};

}  // namespace zarnet::test
