#include "desktop/Doorbell.h"

#include "system/PlatformError.h"

#include <cerrno>
#include <cstdint>
#include <utility>

#include <sys/eventfd.h>
#include <unistd.h>

namespace zarnet {

namespace {

int openEventCounter() {
  const int descriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  if (descriptor < 0) throw systemError("eventfd", "could not be created", errno);
  return descriptor;
}

}  // namespace

Doorbell::Doorbell(std::function<void()> answer)
    : descriptor(openEventCounter()), notifier(descriptor, QSocketNotifier::Read) {
  QObject::connect(&notifier, &QSocketNotifier::activated, &notifier,
                   [this, answer = std::move(answer)](QSocketDescriptor, QSocketNotifier::Type) {
                     std::uint64_t rings = 0;
                     if (read(descriptor, &rings, sizeof rings) > 0) answer();
                   });
}

Doorbell::~Doorbell() {
  notifier.setEnabled(false);
  close(descriptor);
}

void Doorbell::ring() const noexcept {
  const int before = errno;
  const std::uint64_t one = 1;
  // Fails only when the counter is full, and then the bell is ringing already.
  [[maybe_unused]] const ssize_t written = write(descriptor, &one, sizeof one);
  errno = before;
}

}  // namespace zarnet
