#include "tests/support/StandIns.h"

#include "tests/support/Programs.h"

#include <sstream>

namespace zarnet::test {

StandIns::StandIns() {
  for (const char* program : {"lame", "afconvert", "vorbis-tool"})
    replace(program, "exec " + resource(program).string() + R"( "$@")");
}

void StandIns::replace(const std::string& program, std::string_view script) const {
  // One call is its name and arguments, each ended by a zero byte, and a record separator.
  const std::string record = R"({ printf '%s\0' ")" + program + R"(" "$@"; printf '\036'; } >>")" +
                             (folder / "calls").string() + "\"\n";
  const std::string real = "real() { " + resource(program).string() + " \"$@\"; }\n";
  writeFile(folder / program, "#!/bin/sh\n" + record + real + std::string(script) + "\n");
  std::filesystem::permissions(folder / program, std::filesystem::perms::owner_all);
}

std::vector<std::vector<std::string>> StandIns::calls() {
  std::vector<std::vector<std::string>> result;
  if (!std::filesystem::exists(folder / "calls")) return result;
  std::istringstream records(readFile(folder / "calls"));
  for (std::string record; std::getline(records, record, '\036');) {
    std::istringstream words(record);
    result.emplace_back();
    for (std::string word; std::getline(words, word, '\0');)
      result.back().push_back(word);
  }
  std::filesystem::remove(folder / "calls");
  return result;
}

}  // namespace zarnet::test
