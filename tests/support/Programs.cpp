#include "tests/support/Programs.h"

#include <csignal>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

namespace zarnet::test {

ProgramResult runProgram(const std::vector<std::string>& commandLine) {
  const ScratchFolder scratch;
  std::vector<std::string> redirected = {"sh", "-c", R"(exec "$@" >"$0/output" 2>"$0/errors")",
                                         scratch.path().string()};
  redirected.insert(redirected.end(), commandLine.begin(), commandLine.end());
  RunningProgram program(redirected);
  const int status = program.exitStatus(std::chrono::hours(1)).value_or(-1);
  EXPECT_NE(status, 127) << "could not start " << commandLine[0];
  return {status, readFile(scratch / "output"), readFile(scratch / "errors")};
}

void runScript(const std::filesystem::path& folder, const std::string& script) {
  const std::string prelude = "set -e; cd \"$0\"; ffmpeg() { command ffmpeg -y -v error \"$@\"; }\n";
  const ProgramResult result = runProgram({"sh", "-c", prelude + script, folder.string()});
  EXPECT_EQ(result.status, 0) << script << "\n" << result.errors;
}

RunningProgram::RunningProgram(const std::vector<std::string>& commandLine, int output) {
  std::vector<std::string> words = {"setpriv", "--pdeathsig", "KILL"};
  words.insert(words.end(), commandLine.begin(), commandLine.end());
  std::vector<char*> arguments;
  for (std::string& word : words)
    arguments.push_back(word.data());
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    posix_spawn_file_actions_addopen(&actions, stream, "/dev/null", O_RDWR, 0);
  if (output != -1) posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
  const int error = posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::runtime_error("no program can be started");
}

RunningProgram::~RunningProgram() {
  sendSignal(SIGKILL);
  exitStatus(std::chrono::hours(1));
}

void RunningProgram::sendSignal(int number) const {
  if (!status) kill(child, number);
}

std::optional<int> RunningProgram::exitStatus(std::chrono::seconds limit) {
  int ending = 0;
  if (!status && waitUntil([&] { return waitpid(child, &ending, WNOHANG) == child; }, limit))
    status = WIFEXITED(ending) ? WEXITSTATUS(ending) : 128 + WTERMSIG(ending);
  return status;
}

std::filesystem::path resource(const std::string& name) {
  return std::filesystem::path(ZARNET_RESOURCES) / name;
}

int livingChildren() {
  std::ptrdiff_t count = 0;
  for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
    std::ifstream children(task.path() / "children");
    count += std::distance(std::istream_iterator<pid_t>(children), {});
  }
  return static_cast<int>(count);
}

}  // namespace zarnet::test
