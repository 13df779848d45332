#include "tests/support/PulseServer.h"

#include "tests/support/Wait.h"

#include <array>
#include <csignal>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace zarnet::test {

PulseServer::PulseServer(const std::vector<std::string>& sinks) : initialSinks(sinks) {
  start();
}

PulseServer::~PulseServer() = default;

std::string PulseServer::address() const {
  return "unix:" + (folder / "socket").string();
}

void PulseServer::start() {
  moduleOfSink.clear();
  const std::string home = folder.path().string();
  const std::string log = (folder / "log").string();
  process = std::make_unique<RunningProgram>(std::vector<std::string>{
      "env", "HOME=" + home, "XDG_RUNTIME_DIR=" + home, "pulseaudio", "--daemonize=no", "--exit-idle-time=-1",
      "-n", "--use-pid-file=no", "--log-target=newfile:" + log, "-L",
      "module-native-protocol-unix auth-cookie-enabled=0 socket=" + (folder / "socket").string()});
  const std::vector<std::string> question = {"pactl", "-s", address(), "info"};
  if (!waitUntil([&] { return runProgram(question).status == 0; })) {
    throw std::runtime_error("the audio server does not start:\n" + readFile(log));
  }
  for (const std::string& sink : initialSinks)
    addSink(sink);
  if (!initialSinks.empty()) setDefaultSink(initialSinks.front());
}

void PulseServer::kill() {
  process.reset();
}

void PulseServer::freeze() {
  process->sendSignal(SIGSTOP);
}

void PulseServer::thaw() {
  process->sendSignal(SIGCONT);
}

std::string PulseServer::pactl(const std::vector<std::string>& arguments) {
  std::vector<std::string> commandLine = {"pactl", "-s", address()};
  commandLine.insert(commandLine.end(), arguments.begin(), arguments.end());
  ProgramResult result = runProgram(commandLine);
  EXPECT_EQ(result.status, 0) << testing::PrintToString(arguments) << "\n" << result.errors;
  return std::move(result.output);
}

std::string PulseServer::loadModule(const std::vector<std::string>& moduleAndArguments) {
  std::vector<std::string> arguments = {"load-module"};
  arguments.insert(arguments.end(), moduleAndArguments.begin(), moduleAndArguments.end());
  const std::string number = pactl(arguments);
  return number.substr(0, number.find('\n'));
}

void PulseServer::addSink(const std::string& name) {
  // Without the format the sink would round to 16 bits.
  moduleOfSink[name] = loadModule({"module-null-sink", "sink_name=" + name, "rate=48000", "channels=2",
                                   "format=float32le", "norewinds=1"});
}

void PulseServer::removeSink(const std::string& name) {
  pactl({"unload-module", moduleOfSink.at(name)});
  moduleOfSink.erase(name);
}

void PulseServer::setDefaultSink(const std::string& name) {
  pactl({"set-default-sink", name});
}

void PulseServer::suspendSink(const std::string& name, bool suspended) {
  pactl({"suspend-sink", name, suspended ? "1" : "0"});
}

MonitorRecorder::MonitorRecorder(const PulseServer& server, const std::string& sink) {
  std::array<int, 2> ends = {-1, -1};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe for the recorder");
  process = std::make_unique<RunningProgram>(
      std::vector<std::string>{"parec", "-s", server.address(), "-d", sink + ".monitor", "--raw",
                               "--format=float32le", "--rate=48000", "--channels=2", "--latency-msec=10"},
      ends[1]);
  close(ends[1]);
  reader = std::thread([this, descriptor = ends[0]] { read(descriptor); });
  // A server without a warm recorder makes a stream wait for about a second.
  EXPECT_TRUE(waitUntil([&] { return count() > 4800; })) << "the recorder does not start";
}

MonitorRecorder::~MonitorRecorder() {
  process.reset();
  reader.join();
}

void MonitorRecorder::read(int descriptor) {
  std::array<float, 1024> part;
  std::size_t bytes = 0;  // in `part`, which may end within a sample
  while (true) {
    const ssize_t got = ::read(descriptor, reinterpret_cast<char*>(part.data()) + bytes, sizeof part - bytes);
    if (got <= 0) break;
    bytes += static_cast<std::size_t>(got);
    const std::size_t whole = bytes / (2 * sizeof(float)) * 2;
    {
      const std::lock_guard hold(lock);
      recorded.insert(recorded.end(), part.begin(), part.begin() + static_cast<std::ptrdiff_t>(whole));
    }
    bytes -= whole * sizeof(float);
    std::move(reinterpret_cast<char*>(part.data() + whole),
              reinterpret_cast<char*>(part.data() + whole) + bytes, reinterpret_cast<char*>(part.data()));
  }
  close(descriptor);
}

std::vector<float> MonitorRecorder::samples() const {
  const std::lock_guard hold(lock);
  return recorded;
}

std::size_t MonitorRecorder::count() const {
  const std::lock_guard hold(lock);
  return recorded.size() / 2;
}

float MonitorRecorder::last() const {
  const std::lock_guard hold(lock);
  return recorded.empty() ? 0.0f : recorded[recorded.size() - 2];
}

}  // namespace zarnet::test
