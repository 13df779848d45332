#pragma once

#include "tests/support/Programs.h"

#include <csignal>

namespace zarnet::test {

/// A PulseAudio server of the test's own, in scratch folders, whose outputs are null sinks: what is played on
/// one can be recorded from its monitor, bit for bit. Several can run side by side. Every operation returns
/// when the server has done it, and fails the test when it has not.
class PulseServer {
 public:
  /// Starts a server with these null sinks, modules 0, 1, …; the first becomes the default one.
  explicit PulseServer(const std::vector<std::string>& names = {"null"}) : sinks(names) { start(); }

  /// For `makeAudioEngine`, and for the environment variable PULSE_SERVER.
  std::string address() const { return "unix:" + (folder / "socket").string(); }

  /// Runs a command of the program `pactl`.
  void control(const std::string& command) const;
  void setDefaultSink(const std::string& name) const { control("set-default-sink " + name); }

  /// Ends the server at once, as a crash does.
  void kill() { process.reset(); }
  /// Starts it again after `kill`, with the sinks of the construction.
  void start();
  /// Stops the server's process without ending it, so that it answers nothing, and wakes it up again.
  void freeze() const { process->sendSignal(SIGSTOP); }
  void thaw() const { process->sendSignal(SIGCONT); }

 private:
  const ScratchFolder folder;
  const std::vector<std::string> sinks;
  std::unique_ptr<RunningProgram> process;
};

/// Records the monitor of a sink from construction to destruction, 48 kHz stereo float.
class MonitorRecorder {
 public:
  /// Returns once the recording runs.
  MonitorRecorder(const PulseServer& server, const std::string& sink);

  /// What has been recorded so far, interleaved. Frames that the server had nothing to play for are zeros.
  std::vector<float> samples() const { return samplesFrom(0, count()); }
  /// Number of frames recorded so far.
  std::size_t count() const { return std::filesystem::file_size(file) / frameBytes; }
  /// The left sample of the last frame recorded; 0 before the first.
  float last() const;

 private:
  static constexpr std::size_t frameBytes = 2 * sizeof(float);
  std::vector<float> samplesFrom(std::size_t frame, std::size_t frames) const;

  const ScratchFolder folder;
  const std::filesystem::path file = writeFile(folder / "recorded", "");
  RunningProgram process;
};

}  // namespace zarnet::test
