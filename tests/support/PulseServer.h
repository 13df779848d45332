#pragma once

#include "tests/support/Programs.h"
#include "tests/support/ScratchFolder.h"

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace zarnet::test {

/// A PulseAudio server of the test's own, in scratch folders, whose outputs are null sinks: what is played on
/// one can be recorded from its monitor, bit for bit. Several can run side by side. Every operation returns
/// when the server has done it, and fails the test when it has not.
class PulseServer {
 public:
  /// Starts a server with these null sinks; the first becomes the default one.
  explicit PulseServer(const std::vector<std::string>& sinks = {"null"});
  ~PulseServer();

  /// For `makeAudioEngine`, and for the environment variable PULSE_SERVER.
  std::string address() const;

  void addSink(const std::string& name);
  void removeSink(const std::string& name);
  void setDefaultSink(const std::string& name);
  void suspendSink(const std::string& name, bool suspended);
  /// Loads any module, given as on the command line of `pactl load-module`; returns its number.
  std::string loadModule(const std::vector<std::string>& moduleAndArguments);

  /// Ends the server at once, as a crash does.
  void kill();
  /// Starts it again after `kill`, with the sinks of the construction.
  void start();
  /// Stops the server's process without ending it, so that it answers nothing, and wakes it up again.
  void freeze();
  void thaw();

 private:
  std::string pactl(const std::vector<std::string>& arguments);

  ScratchFolder folder;
  const std::vector<std::string> initialSinks;
  std::map<std::string, std::string> moduleOfSink;
  std::unique_ptr<RunningProgram> process;
};

/// Records the monitor of a sink from construction to destruction, 48 kHz stereo float.
class MonitorRecorder {
 public:
  /// Returns once the recording runs.
  MonitorRecorder(const PulseServer& server, const std::string& sink);
  ~MonitorRecorder();
  MonitorRecorder(const MonitorRecorder&) = delete;
  MonitorRecorder& operator=(const MonitorRecorder&) = delete;

  /// What has been recorded so far, interleaved. Frames that the server had nothing to play for are zeros.
  std::vector<float> samples() const;
  /// Number of frames recorded so far.
  std::size_t count() const;
  /// The left sample of the last frame recorded; 0 before the first.
  float last() const;

 private:
  void read(int descriptor);

  mutable std::mutex lock;
  std::vector<float> recorded;  // guarded by `lock`
  std::unique_ptr<RunningProgram> process;
  std::thread reader;
};

}  // namespace zarnet::test
