#pragma once

#include "tests/support/Programs.h"

#include <csignal>
#include <map>

namespace zarnet::test {

/// A sound server of the test's own, in scratch folders, whose outputs are null sinks: what is played on one
/// can be recorded from its monitor, bit for bit. It is PulseAudio, or PipeWire with WirePlumber and
/// pipewire-pulse where the environment variable ZARNET_TEST_SERVER says "pipewire". Several can run side by
/// side. Every operation returns when the server has done it, and fails the test when it has not.
class SoundServer {
 public:
  /// Starts a server with these null sinks; the first becomes the default one.
  explicit SoundServer(const std::vector<std::string>& names = {"null"}) : sinks(names) { start(); }
  ~SoundServer() { kill(); }
  SoundServer(const SoundServer&) = delete;
  SoundServer& operator=(const SoundServer&) = delete;

  static bool isPipeWire();

  /// For `makeAudioEngine`, and for the environment variable PULSE_SERVER.
  std::string address() const { return "unix:" + socket.string(); }

  /// Runs a command of the program `pactl` and returns what it says.
  std::string control(const std::string& command) const;
  void setDefaultSink(const std::string& name) const;
  void removeSink(const std::string& name) const { control("unload-module " + modules.at(name)); }

  /// Ends the server at once, as a crash does.
  void kill();
  /// Starts it again after `kill`, with the sinks of the construction.
  void start();
  /// Stops the server's processes without ending them, so that it answers nothing, and wakes it up again.
  void freeze() const { sendSignal(SIGSTOP); }
  void thaw() const { sendSignal(SIGCONT); }
  /// Gives the server the real-time priority that it has on a desktop. Needs a privileged user.
  void raisePriority() const;

 private:
  void startPulseAudio();
  void startPipeWire();
  void run(const std::vector<std::string>& commandLine);
  ProgramResult tell(const std::string& command) const;
  void sendSignal(int number) const;

  const ScratchFolder folder;
  const std::filesystem::path socket = folder / "pulse" / "native";
  const std::vector<std::string> sinks;
  std::map<std::string, std::string> modules;              // the module of each sink
  std::vector<std::unique_ptr<RunningProgram>> processes;  // the one that clients talk to is the last
};

/// Records the monitor of a sink from construction to destruction, 48 kHz stereo float.
class MonitorRecorder {
 public:
  /// Returns once the recording runs. `latency`, in milliseconds, says how much it gets at a time; PipeWire
  /// works in as small portions then, whatever else it plays.
  MonitorRecorder(const SoundServer& server, const std::string& sink, int latency = 10);

  /// What has been recorded so far, interleaved. Frames that the server had nothing to play for are zeros.
  std::vector<float> samples() const { return samplesFrom(0, count()); }
  /// Number of frames recorded so far.
  std::size_t count() const { return std::filesystem::file_size(file) / frameBytes; }
  /// The left sample of the last frame recorded; 0 before the first.
  float last() const;
  /// As for the server.
  void raisePriority() const;

 private:
  static constexpr std::size_t frameBytes = 2 * sizeof(float);
  std::vector<float> samplesFrom(std::size_t frame, std::size_t frames) const;

  const ScratchFolder folder;
  const std::filesystem::path file = writeFile(folder / "recorded", "");
  RunningProgram process;
};

}  // namespace zarnet::test
