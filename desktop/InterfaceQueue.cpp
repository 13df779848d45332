#include "desktop/InterfaceQueue.h"

#include <QCoreApplication>
#include <QThread>
#include <memory>
#include <utility>

namespace zarnet {

bool onInterfaceThread() {
  const QCoreApplication* application = QCoreApplication::instance();
  return application == nullptr || application->thread() == QThread::currentThread();
}

InterfaceQueue::InterfaceQueue() : bell([this] { deliver(); }) {}

InterfaceQueue::~InterfaceQueue() {
  collect();
}

void InterfaceQueue::post(std::function<void()> work) {
  auto* letter = new Letter{std::move(work), newest.load(std::memory_order_relaxed)};
  while (!newest.compare_exchange_weak(letter->older, letter, std::memory_order_release,
                                       std::memory_order_relaxed)) {
  }
  bell.ring();
}

void InterfaceQueue::collect() {
  const auto end = static_cast<std::ptrdiff_t>(arrived.size());
  std::unique_ptr<Letter> letter(newest.exchange(nullptr, std::memory_order_acquire));
  while (letter != nullptr) {
    arrived.insert(arrived.begin() + end, std::move(letter->work));
    letter.reset(letter->older);
  }
}

void InterfaceQueue::deliver() {
  collect();
  while (!arrived.empty()) {
    const std::function<void()> work = std::move(arrived.front());
    arrived.pop_front();
    work();
  }
}

}  // namespace zarnet
