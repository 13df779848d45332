#include "tests/support/FakeAudioEngine.h"

#include "platform/PlatformError.h"

#include <array>
#include <utility>

namespace zarnet::test {

void FakeAudioEngine::connect(RenderCallback callback, ConfigurationChange listener) {
  source = std::move(callback);
  changed = std::move(listener);
}

void FakeAudioEngine::start(std::uint64_t number) {
  if (startError) throw PlatformError(*startError);
  const std::lock_guard hold(lock);
  session = number;
  running = true;
}

void FakeAudioEngine::stop() {
  const std::lock_guard hold(lock);
  running = false;
}

bool FakeAudioEngine::isRunning() const {
  const std::lock_guard hold(lock);
  return running;
}

FakeAudioEngine::Rendered FakeAudioEngine::render(std::int64_t frames) {
  constexpr float untouched = 99;
  const auto count = static_cast<std::size_t>(frames);
  Rendered rendered = {true, std::vector(count, untouched), std::vector(count, untouched)};
  const std::array<float*, 2> buffers = {rendered.left.data(), rendered.right.data()};
  const std::lock_guard hold(lock);
  if (running) source(rendered.silence, buffers, frames);
  return rendered;
}

void FakeAudioEngine::loseDevice() {
  const std::lock_guard hold(lock);
  if (std::exchange(running, false)) changed(session);
}

}  // namespace zarnet::test
