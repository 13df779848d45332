#include "tests/support/SoundServer.h"

#include <cstdlib>

namespace zarnet::test {

namespace {

void makeRealTime(const RunningProgram& program) {
  const std::vector<std::string> chrt = {"chrt",  "--all-tasks", "--rr",
                                         "--pid", "10",          std::to_string(program.pid())};
  EXPECT_EQ(runProgram(chrt).status, 0) << "no real-time priority";
}

}  // namespace

bool SoundServer::isPipeWire() {
  const char* wanted = std::getenv("ZARNET_TEST_SERVER");
  return wanted != nullptr && std::string(wanted) == "pipewire";
}

void SoundServer::start() {
  std::filesystem::create_directories(socket.parent_path());
  isPipeWire() ? startPipeWire() : startPulseAudio();
  // Without the format PulseAudio would round to 16 bits.
  for (const std::string& name : sinks)
    modules[name] = control(
        "load-module module-null-sink rate=48000 channels=2 format=float32le norewinds=1 sink_name=" + name);
  if (!sinks.empty()) setDefaultSink(sinks.front());
}

void SoundServer::startPulseAudio() {
  const std::string script =
      "load-module module-native-protocol-unix auth-cookie-enabled=0 socket=" + socket.string() + "\n";
  run({"pulseaudio", "--daemonize=no", "--exit-idle-time=-1", "-n", "--use-pid-file=no", "-F",
       writeFile(folder / "script", script).string()});
  if (!waitUntil([&] { return tell("info").status == 0; }))
    throw std::runtime_error("PulseAudio does not start");
}

void SoundServer::startPipeWire() {
  const std::filesystem::path bus = folder / "bus";
  std::filesystem::remove(bus);
  run({"dbus-daemon", "--session", "--nofork", "--address=unix:path=" + bus.string()});
  run({"pipewire"});
  const bool ready = waitUntil([&] { return exists(bus) && exists(folder / "pipewire-0"); });
  run({"wireplumber"});
  run({"pipewire-pulse"});
  // WirePlumber's stand-in for outputs shows that all three work together.
  const auto hasOutput = [&] {
    return tell("list short sinks").output.find("auto_null") != std::string::npos;
  };
  if (!ready || !waitUntil(hasOutput)) throw std::runtime_error("PipeWire does not start");
}

/// Starts a program that finds nothing of this user's, and no bus but the server's own.
void SoundServer::run(const std::vector<std::string>& commandLine) {
  const std::string home = folder.path().string();
  std::vector<std::string> words = {"env",
                                    "-u",
                                    "XDG_CONFIG_HOME",
                                    "-u",
                                    "XDG_STATE_HOME",
                                    "-u",
                                    "DISPLAY",
                                    "HOME=" + home,
                                    "XDG_RUNTIME_DIR=" + home,
                                    "DBUS_SESSION_BUS_ADDRESS=unix:path=" + home + "/bus"};
  words.insert(words.end(), commandLine.begin(), commandLine.end());
  processes.push_back(std::make_unique<RunningProgram>(words));
}

void SoundServer::kill() {
  while (!processes.empty())
    processes.pop_back();
  std::filesystem::remove(folder / "pipewire-0");
  std::filesystem::remove(socket);
}

void SoundServer::sendSignal(int number) const {
  for (const auto& process : processes)
    process->sendSignal(number);
}

void SoundServer::raisePriority() const {
  for (const auto& process : processes)
    makeRealTime(*process);
}

ProgramResult SoundServer::tell(const std::string& command) const {
  return runProgram({"sh", "-c", "exec pactl -s \"$0\" " + command, address()});
}

std::string SoundServer::control(const std::string& command) const {
  const ProgramResult result = tell(command);
  EXPECT_EQ(result.status, 0) << command << "\n" << result.errors;
  return result.output.substr(0, result.output.find_last_not_of('\n') + 1);
}

void SoundServer::setDefaultSink(const std::string& name) const {
  // PipeWire leaves the choice to WirePlumber, which takes its time, and refuses it before that is ready.
  EXPECT_TRUE(waitUntil([&] { return tell("set-default-sink " + name).status == 0; })) << name;
  EXPECT_TRUE(waitUntil([&] { return control("get-default-sink") == name; })) << name;
}

MonitorRecorder::MonitorRecorder(const SoundServer& server, const std::string& sink, int latency)
    : process({"parec", "-s", server.address(), "-d", sink + ".monitor", "--raw", "--format=float32le",
               "--rate=48000", "--channels=2", "--latency-msec=" + std::to_string(latency), file.string()}) {
  // A server without a warm recorder makes a stream wait for about a second.
  EXPECT_TRUE(waitUntil([&] { return count() > 4800; })) << "the recorder does not start";
}

void MonitorRecorder::raisePriority() const {
  makeRealTime(process);
}

float MonitorRecorder::last() const {
  const std::size_t frames = count();
  return frames == 0 ? 0 : samplesFrom(frames - 1, 1)[0];
}

std::vector<float> MonitorRecorder::samplesFrom(std::size_t frame, std::size_t frames) const {
  std::vector<float> samples(2 * frames);
  std::ifstream stream(file, std::ios::binary);
  stream.seekg(static_cast<std::streamoff>(frame * frameBytes));
  stream.read(reinterpret_cast<char*>(samples.data()), static_cast<std::streamsize>(frames * frameBytes));
  return samples;
}

}  // namespace zarnet::test
