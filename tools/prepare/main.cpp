// zarnet-prepare: prepares comparisons from the command line and prints their check records.

#include "audio/AudioInfo.h"
#include "prepare/AudioPreparer.h"
#include "prepare/CheckRecord.h"
#include "prepare/Codecs.h"
#include "prepare/Resources.h"
#include "system/DisplayText.h"
#include "system/FileSystem.h"
#include "system/PlatformError.h"
#include "system/UUID.h"
#include "tools/prepare/DriverOptions.h"
#include "tools/prepare/Results.h"
#include "tools/prepare/StopSignals.h"
#include "tools/support/Tool.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>

#include <fcntl.h>
#include <unistd.h>

namespace zarnet {

namespace {

constexpr int exitUsage = 2;
constexpr int exitSignalled = 128;  // plus the number of the signal

/// Opens what the caller left closed of the three standard streams, so that no other file takes its place.
/// Only for reading: what is written there fails instead of getting lost.
void openStandardStreams() {
  int fd = -1;
  while ((fd = open("/dev/null", O_RDONLY)) >= 0 && fd <= STDERR_FILENO) {
  }
  if (fd >= 0) close(fd);
}

/// Raises `PlatformError` unless all of it has arrived.
void print(const std::string& text) {
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0)
    throw systemError("standard output", "could not be written", errno);
}

void complain(const std::exception& error) {
  std::fprintf(stderr, "%s\n", oneLine(errorDescription(error)).c_str());
}

/// Tells on standard error what is being done, with the time since it began where a person is watching.
class Progress {
 public:
  void operator()(const std::string& text) const {
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    if (watched) std::fprintf(stderr, "%6.1f s  ", elapsed.count());
    std::fprintf(stderr, "%s\n", text.c_str());
  }

 private:
  const bool watched = isatty(STDERR_FILENO) == 1;
  const std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

/// Prepares one file and returns its check record. `place` is where its results go, if they are wanted.
std::string preparedRecord(AudioPreparer& preparer, const DriverOptions& options,
                           const std::filesystem::path& file, const std::filesystem::path* place) {
  if (fileExists(preparer.directory)) preparer.clearTemporaryFiles();  // of the file before
  inspectAudio(file);                                                  // before folders are made for it
  const SetNames names(options.codec, options.bitrate);
  std::optional<ResultSet> set;
  if (place != nullptr && isAccepted(options.codec, options.bitrate))
    set.emplace(*place, names, options.files);
  const PreparedAudio prepared =
      preparer.prepare(file, newUUID(), options.codec, options.bitrate, options.match, Progress());
  const std::string record = checkRecordText(prepared, options.codec, options.bitrate, options.match,
                                             {prepared.original->peak(), prepared.lossy->peak()});
  if (set) {
    for (const std::string& name : {names.original, names.encoded, names.decoded}) {
      preparer.checkCancellation();
      set->take(prepared.encodedURL.parent_path() / name, [&] { preparer.checkCancellation(); });
    }
    try {
      set->writeRecord(record);
    } catch (const PlatformError& error) {  // a diagnosis is not worth the other three
      complain(error);
    }
    preparer.checkCancellation();
    set->publish();
  }
  return record;
}

/// Where the results of each file go; empty when they are not wanted.
std::vector<std::filesystem::path> places(const DriverOptions& options) {
  if (!options.output) return {};
  createFolders(*options.output);
  const SetNames names(options.codec, options.bitrate);
  if (!options.byPath) return placesByName(*options.output, options.files, names);
  std::vector<std::filesystem::path> result;
  for (const std::filesystem::path& file : options.files)
    result.push_back(placeByPath(*options.output, file, names));
  return result;
}

/// Prepares every file; returns the exit status.
int prepareAll(const DriverOptions& options, const sigset_t& signals) {
  const std::vector<std::filesystem::path> folders = places(options);
  AudioPreparer preparer(options.resources.value_or(resourcesFolder()) / "lame");
  const StopSignals stopSignals(
      signals, [&] { preparer.cancel(); },
      [&] {
        preparer.cancelAtOnce();
        try {
          removeAll(preparer.directory);
        } catch (const std::exception&) {  // somebody is in a hurry
        }
        _exit(exitSignalled + stopSignals.received());
      });
  int status = EXIT_SUCCESS;
  for (std::size_t i = 0; i < options.files.size() && stopSignals.received() == 0; ++i) {
    if (options.files.size() > 1)
      std::fprintf(stderr, "%s:\n", oneLine(displayText(options.files[i])).c_str());
    std::string record;
    try {
      record = preparedRecord(preparer, options, options.files[i], folders.empty() ? nullptr : &folders[i]);
    } catch (const std::exception& error) {
      complain(error);
      status = EXIT_FAILURE;
    }
    print(record);  // there is no use in going on when nobody can read it
  }
  return stopSignals.received() == 0 ? status : exitSignalled + stopSignals.received();
}

int run(int count, char** values) {
  openStandardStreams();
  signal(SIGPIPE, SIG_IGN);  // both fail the write instead, and that is reported
  signal(SIGXFSZ, SIG_IGN);
  const sigset_t signals = blockStopSignals();
  const std::optional<DriverOptions> options = parsedOptions(count, values);
  if (!options) {
    std::fputs(usageText().c_str(), stderr);
    return exitUsage;
  }
  switch (options->task) {
    case DriverOptions::Task::help:
      print(helpText());
      return EXIT_SUCCESS;
    case DriverOptions::Task::version:
      print("zarnet-prepare " ZARNET_VERSION "\n");
      return EXIT_SUCCESS;
    case DriverOptions::Task::prepare:
      break;
  }
  return prepareAll(*options, signals);
}

}  // namespace

}  // namespace zarnet

int main(int count, char** values) {
  try {
    return zarnet::run(count, values);
  } catch (const std::exception& error) {
    zarnet::complain(error);
    return EXIT_FAILURE;
  }
}
