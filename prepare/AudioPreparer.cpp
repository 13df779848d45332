#include "prepare/AudioPreparer.h"

#include "audio/AppError.h"
#include "system/ChildProcess.h"
#include "system/DisplayText.h"
#include "system/FileHandle.h"
#include "system/FileSystem.h"
#include "system/TextTail.h"

#include <optional>
#include <string_view>
#include <utility>

namespace zarnet {

namespace {

constexpr std::string_view prefix = "Brevolt-";  // of a workspace's name
constexpr std::int64_t reasonBytes = 4096;       // a program on a full disk can still say why it fails
constexpr std::size_t tailCharacters = 650;      // of a failed program's log, shown to the user

}  // namespace

AudioPreparer::AudioPreparer(std::filesystem::path encoder)
    : AudioPreparer(HeldFolder::create(temporaryFolder(), prefix), std::move(encoder)) {}

AudioPreparer::AudioPreparer(HeldFolder created, std::filesystem::path encoder)
    : directory(created.path()), lame(std::move(encoder)), workspace(std::move(created)) {
  sweeper = std::jthread([place = directory.parent_path()] { removeAbandonedFolders(place, prefix); });
}

AudioPreparer::~AudioPreparer() {
  try {
    removeAll(directory);
  } catch (const std::exception&) {  // nobody is left who could be told
  }
}

void AudioPreparer::run(const std::filesystem::path& executable, const std::vector<std::string>& arguments) {
  checkCancellation();
  const std::filesystem::path logPath = directory / "process.log";
  FileHandle log = FileHandle::createForWriting(logPath);
  log.reserve(reasonBytes);
  std::optional<ChildProcess> child;
  {
    // Checked and launched under the lock: `cancel` comes either before, or finds the child.
    const MutexLock lock(processLock);
    if (cancelled) throw AppError("Cancelled");
    child.emplace(executable, arguments, log.descriptor());
    process = &*child;
  }
  child->waitUntilExited();
  {
    // Forgotten before it is reaped: `cancel` must not signal a stranger who got the same process number.
    const MutexLock lock(processLock);
    process = nullptr;
  }
  const int status = child->reap();
  checkCancellation();
  if (status != 0) throw AppError("Audio conversion failed. " + tailOfTextFile(logPath, tailCharacters));
}

void AudioPreparer::cancel() {
  const MutexLock lock(processLock);
  cancelled = true;
  if (process != nullptr) process->terminate();
}

void AudioPreparer::cancelAtOnce() {
  const MutexLock lock(processLock);
  cancelled = true;
  if (process != nullptr) process->killAtOnce();
}

void AudioPreparer::resetCancellation() {
  const MutexLock lock(processLock);
  cancelled = false;
}

void AudioPreparer::checkCancellation() {
  bool stop = false;
  {
    const MutexLock lock(processLock);
    stop = cancelled;
  }
  if (stop) throw AppError("Cancelled");
}

void AudioPreparer::discardConversion(const std::filesystem::path& at) {
  // The last component goes first: after "..", what is left of it would name another folder.
  const std::filesystem::path folder = standardized(folderOf(absolutePath(at)));
  if (folder.parent_path() != standardized(directory))
    throw AppError("Refusing to remove audio outside Zarnet’s temporary folder.");
  removeAll(folder);
}

void AudioPreparer::clearTemporaryFiles() {
  for (const std::filesystem::path& entry : folderEntries(directory))
    removeAll(entry);
}

}  // namespace zarnet
