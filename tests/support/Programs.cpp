#include "tests/support/Programs.h"

#include "tests/support/ScratchFolder.h"
#include "tests/support/Wait.h"

#include <csignal>
#include <fstream>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zarnet::test {

namespace {

/// Starts a program with an empty standard input and returns its process number; −1 fails the test.
template <typename Arrange>
pid_t spawn(const std::vector<std::string>& commandLine, Arrange arrange) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  arrange(&actions);
  std::vector<char*> arguments;
  arguments.reserve(commandLine.size() + 1);
  for (const std::string& argument : commandLine)
    arguments.push_back(const_cast<char*>(argument.c_str()));
  arguments.push_back(nullptr);
  pid_t child = -1;
  const int error = posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error == 0) return child;
  ADD_FAILURE() << "could not start " << commandLine[0];
  return -1;
}

/// The exit status, or 128 + signal.
int plainStatus(int status) {
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace

ProgramResult runProgram(const std::vector<std::string>& commandLine) {
  ScratchFolder scratch;
  const std::string output = (scratch / "out").string();
  const std::string errors = (scratch / "err").string();
  const pid_t child = spawn(commandLine, [&](posix_spawn_file_actions_t* actions) {
    posix_spawn_file_actions_addopen(actions, STDOUT_FILENO, output.c_str(), O_CREAT | O_WRONLY, 0600);
    posix_spawn_file_actions_addopen(actions, STDERR_FILENO, errors.c_str(), O_CREAT | O_WRONLY, 0600);
  });
  if (child == -1) return {127, "", ""};
  int status = 0;
  waitpid(child, &status, 0);
  return {plainStatus(status), readFile(output), readFile(errors)};
}

RunningProgram::RunningProgram(const std::vector<std::string>& commandLine, int output) {
  std::vector<std::string> guarded = {"setpriv", "--pdeathsig", "KILL"};
  guarded.insert(guarded.end(), commandLine.begin(), commandLine.end());
  child = spawn(guarded, [&](posix_spawn_file_actions_t* actions) {
    posix_spawn_file_actions_addopen(actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    if (output == -1) {
      posix_spawn_file_actions_addopen(actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    } else {
      posix_spawn_file_actions_adddup2(actions, output, STDOUT_FILENO);
    }
  });
}

RunningProgram::~RunningProgram() {
  if (child == -1 || status) return;
  sendSignal(SIGKILL);
  waitpid(child, nullptr, 0);
}

void RunningProgram::sendSignal(int number) const {
  if (child != -1 && !status) kill(child, number);
}

std::optional<int> RunningProgram::exitStatus(std::chrono::seconds limit) {
  if (child == -1 || status) return status;
  int ending = 0;
  if (waitUntil([&] { return waitpid(child, &ending, WNOHANG) == child; }, limit))
    status = plainStatus(ending);
  return status;
}

void ffmpeg(const std::vector<std::string>& arguments) {
  std::vector<std::string> commandLine = {"ffmpeg", "-y", "-v", "error"};
  commandLine.insert(commandLine.end(), arguments.begin(), arguments.end());
  const ProgramResult result = runProgram(commandLine);
  EXPECT_EQ(result.status, 0) << testing::PrintToString(arguments) << "\n" << result.errors;
}

std::filesystem::path resource(const std::string& name) {
  return std::filesystem::path(ZARNET_RESOURCES) / name;
}

int livingChildren() {
  int count = 0;
  for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
    std::ifstream children(task.path() / "children");
    for (pid_t child = 0; children >> child;)
      ++count;
  }
  return count;
}

}  // namespace zarnet::test
