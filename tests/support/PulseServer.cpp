#include "tests/support/PulseServer.h"

namespace zarnet::test {

void PulseServer::start() {
  std::string script;
  // Without the format a sink would round to 16 bits.
  for (const std::string& name : sinks)
    script +=
        "load-module module-null-sink rate=48000 channels=2 format=float32le norewinds=1 sink_name=" + name +
        "\n";
  if (!sinks.empty()) script += "set-default-sink " + sinks.front() + "\n";
  script +=
      "load-module module-native-protocol-unix auth-cookie-enabled=0 socket=" + (folder / "socket").string() +
      "\n";
  const std::string home = folder.path().string();
  process = std::make_unique<RunningProgram>(std::vector<std::string>{
      "env", "HOME=" + home, "XDG_RUNTIME_DIR=" + home, "pulseaudio", "--daemonize=no", "--exit-idle-time=-1",
      "-n", "--use-pid-file=no", "-F", writeFile(folder / "script", script).string()});
  if (!waitUntil([&] { return runProgram({"pactl", "-s", address(), "info"}).status == 0; }))
    throw std::runtime_error("the audio server does not start");
}

void PulseServer::control(const std::string& command) const {
  runScript(folder.path(), "pactl -s " + address() + " " + command);
}

MonitorRecorder::MonitorRecorder(const PulseServer& server, const std::string& sink)
    : process({"parec", "-s", server.address(), "-d", sink + ".monitor", "--raw", "--format=float32le",
               "--rate=48000", "--channels=2", "--latency-msec=10", file.string()}) {
  // A server without a warm recorder makes a stream wait for about a second.
  EXPECT_TRUE(waitUntil([&] { return count() > 4800; })) << "the recorder does not start";
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
