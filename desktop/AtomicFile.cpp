#include "desktop/AtomicFile.h"

#include "system/FileSystem.h"
#include "system/PlatformError.h"
#include "system/UUID.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zarnet {

namespace {

/// The new content until it has taken its place; removed again when it has not.
class Draft {
 public:
  explicit Draft(const std::filesystem::path& destination)
      : target(destination),
        path(destination.parent_path() / (".zarnet-" + newUUID().substr(0, 8))),
        descriptor(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666)) {
    require(descriptor >= 0);
  }
  ~Draft() {
    if (descriptor < 0) return;
    close(descriptor);
    if (!placed) unlink(path.c_str());
  }
  Draft(const Draft&) = delete;
  Draft& operator=(const Draft&) = delete;

  void write(std::string_view bytes) const {
    while (!bytes.empty()) {
      const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
      if (written < 0 && errno == EINTR) continue;
      require(written > 0);
      bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    struct stat old {};
    // Some file systems know no permissions; the content matters more.
    if (stat(target.c_str(), &old) == 0) (void)fchmod(descriptor, old.st_mode & 0777);
    require(fsync(descriptor) == 0);
  }

  void place() {
    require(rename(path.c_str(), target.c_str()) == 0);
    placed = true;
    // From here on the file is replaced; that its name survives a loss of power is a bonus.
    const int folder = open(target.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0) return;
    fsync(folder);
    close(folder);
  }

 private:
  void require(bool success) const {
    if (!success) throw systemError(target, "could not be written", errno);
  }

  std::filesystem::path target;
  std::filesystem::path path;
  int descriptor;
  bool placed = false;
};

}  // namespace

void writeAtomically(const std::filesystem::path& path, std::string_view bytes) {
  std::error_code none;
  const bool link = std::filesystem::is_symlink(path, none);
  const std::filesystem::path target =
      std::filesystem::absolute(link ? std::filesystem::weakly_canonical(path, none) : path, none);
  Draft draft(target.empty() ? path : target);
  draft.write(bytes);
  draft.place();
}

}  // namespace zarnet
