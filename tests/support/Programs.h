#pragma once

#include "tests/support/ScratchFolder.h"
#include "tests/support/Wait.h"

#include <optional>

namespace zarnet::test {

struct ProgramResult {
  int status;          ///< exit status, or 128 + signal
  std::string output;  ///< standard output
  std::string errors;  ///< standard error
};

/// Runs a program to its end, found on PATH when its name has no slash. Fails the test when it cannot be
/// started.
ProgramResult runProgram(const std::vector<std::string>& commandLine);

/// Runs a shell script in a folder and fails the test unless it succeeds. In it, `ffmpeg` overwrites files
/// and prints nothing but errors.
void runScript(const std::filesystem::path& folder, const std::string& script);

/// A program that runs beside the test. It is killed and reaped at the end of its scope, and dies with the
/// thread that started it, however that ends.
class RunningProgram {
 public:
  /// Starts the program, found on PATH. Its standard output goes to the open file `output`, or nowhere when
  /// that is −1; its standard error goes nowhere.
  explicit RunningProgram(const std::vector<std::string>& commandLine, int output = -1);
  ~RunningProgram();
  RunningProgram(const RunningProgram&) = delete;
  RunningProgram& operator=(const RunningProgram&) = delete;

  pid_t pid() const { return child; }
  void sendSignal(int number) const;

  /// Waits for the program's end; its exit status, or 128 + signal. Nothing once the limit is over.
  std::optional<int> exitStatus(std::chrono::seconds limit);

 private:
  pid_t child = -1;
  std::optional<int> status;
};

/// A program of the build's resources folder: "lame", "afconvert" or "vorbis-tool".
std::filesystem::path resource(const std::string& name);

/// Number of living child processes of this process, zombies included.
int livingChildren();

}  // namespace zarnet::test
