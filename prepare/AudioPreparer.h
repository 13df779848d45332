#pragma once

#include "prepare/PreparedAudio.h"
#include "system/HeldFolder.h"
#include "system/Mutex.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace zarnet {

class ChildProcess;

/// Turns source files into comparisons with the help of external encoders, in a private temporary folder of
/// its own.
///
/// `prepare` and `run` belong to one worker thread, one call at a time; `cancel`, `resetCancellation` and
/// `checkCancellation` may be called from any thread at any time; `discardConversion` and
/// `clearTemporaryFiles` from the interface thread. Platform failures pass as `PlatformError`, everything
/// else is an `AppError`.
class AudioPreparer {
 public:
  using Progress = std::function<void(const std::string&)>;

  /// Creates the workspace, a folder named "Brevolt-" and a new UUID in the temporary folder, or raises
  /// `PlatformError`. Workspaces there that processes of this user left behind when they were killed are
  /// removed in the background. `lame` is the MP3 encoder's program; "vorbis-tool" and, on a system without
  /// /usr/bin/afconvert, "afconvert" lie in the same folder. None of them is examined before it is run.
  explicit AudioPreparer(std::filesystem::path lame);
  /// Removes the workspace with all its content, ignoring failures. No `prepare` or `run` may be in progress.
  ~AudioPreparer();
  AudioPreparer(const AudioPreparer&) = delete;
  AudioPreparer& operator=(const AudioPreparer&) = delete;

  /// Prepares one comparison: converts `url` to the working format, encodes and decodes it, aligns the two
  /// versions, measures their loudness when `match` is set, derives the gains, and writes a check record
  /// beside them.
  ///
  /// `id` names the conversion folder and must be one plain name; a second call with the same `id` reuses
  /// what lies there complete. A workspace that is gone is made anew. `codec` is "AAC", "MP3" or "Ogg
  /// Vorbis", `bitrate` one of its bitrates in kbps
  /// (`acceptedBitrates`), else `AppError` "Choose a supported format and bitrate.". `progress` is called on
  /// this thread with a short status line.
  ///
  /// Raises what `inspectAudio`, `PCM` and `run` raise. After a failure the conversion folder is gone with
  /// all that it held, and the preparer stays usable.
  PreparedAudio prepare(const std::filesystem::path& url, const std::string& id, const std::string& codec,
                        std::int64_t bitrate, bool match, const Progress& progress);

  /// Runs a program to its end; it does not outlive the calling thread. What it prints goes to "process.log"
  /// in the workspace, which starts empty. Raises `AppError` "Cancelled" once `cancel` was called, "Audio
  /// conversion failed. " with the last 650 characters of the log when the exit status is not 0 or a signal
  /// ended the program, and `PlatformError` when the log cannot be opened or the program cannot be started.
  void run(const std::filesystem::path& executable, const std::vector<std::string>& arguments);

  /// Asks the running program to end, and makes every later `run` and cancellation point raise "Cancelled",
  /// until `resetCancellation`. Never blocks on a running conversion; never raises. A program that goes on
  /// for two seconds is killed by the `run` that waits for it.
  void cancel() EXCLUDES(processLock);
  /// The same, but the program is killed at once.
  void cancelAtOnce() EXCLUDES(processLock);
  void resetCancellation() EXCLUDES(processLock);
  /// Raises `AppError` "Cancelled" after `cancel`.
  void checkCancellation() EXCLUDES(processLock);

  /// Removes the conversion folder that the file `at` lies in. Nothing there is no error. Raises `AppError`
  /// "Refusing to remove audio outside Zarnet’s temporary folder." unless that folder lies directly in the
  /// workspace, judged by name without following links.
  void discardConversion(const std::filesystem::path& at);

  /// Removes everything inside the workspace, not the workspace itself. Stops at the first failure and raises
  /// it; that the workspace is gone is one.
  void clearTemporaryFiles();

  const std::filesystem::path directory;  ///< the workspace
  const std::filesystem::path lame;

 private:
  AudioPreparer(HeldFolder workspace, std::filesystem::path lame);

  HeldFolder workspace;  ///< `directory`
  Mutex processLock;
  ChildProcess* process GUARDED_BY(processLock) = nullptr;  ///< the child that `run` waits for
  bool cancelled GUARDED_BY(processLock) = false;
  std::jthread sweeper;
};

}  // namespace zarnet
