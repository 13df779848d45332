#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace zarnet {

/// Keeps one receiver of a `Signal` subscribed for as long as it lives. It may outlive the signal. Movable,
/// not copyable; a default-made one keeps nothing.
class [[nodiscard]] Subscription {
 public:
  /// What a signal knows of any of its receivers.
  struct Receiver {
    bool ended = false;
  };

  Subscription() = default;
  explicit Subscription(std::shared_ptr<Receiver> subscribed) : receiver(std::move(subscribed)) {}
  ~Subscription() {
    if (receiver != nullptr) receiver->ended = true;
  }
  Subscription(Subscription&&) = default;
  Subscription& operator=(Subscription&& other) noexcept {
    const Subscription previous(std::exchange(receiver, std::move(other.receiver)));
    return *this;
  }

 private:
  std::shared_ptr<Receiver> receiver;
};

/// Calls everybody who asked to be told, in the order in which they subscribed. Interface thread.
///
/// A receiver may subscribe others, end any subscription (its own included) and raise the signal again while
/// it is being called: who is subscribed afterwards hears of the next call only, and who has ended is not
/// called any more. It may not destroy the signal, and must not raise.
template <class... Arguments>
class Signal {
 public:
  Signal() = default;
  Signal(const Signal&) = delete;
  Signal& operator=(const Signal&) = delete;

  Subscription subscribe(std::function<void(Arguments...)> call) {
    const auto receiver = std::make_shared<Receiver>();
    receiver->call = std::move(call);
    receivers.push_back(receiver);
    return Subscription(receiver);
  }

  void operator()(Arguments... arguments) {
    std::erase_if(receivers, [](const auto& receiver) { return receiver.expired(); });
    const auto present = receivers;
    for (const auto& receiver : present) {
      const auto kept = receiver.lock();
      if (kept != nullptr && !kept->ended) kept->call(arguments...);
    }
  }

  /// Whether anybody is subscribed.
  bool heard() const {
    for (const auto& receiver : receivers) {
      if (!receiver.expired()) return true;
    }
    return false;
  }

 private:
  struct Receiver : Subscription::Receiver {
    std::function<void(Arguments...)> call;
  };

  std::vector<std::weak_ptr<Receiver>> receivers;
};

}  // namespace zarnet
