#pragma once

#include "desktop/InterfaceQueue.h"
#include "desktop/Signal.h"

#include <cassert>
#include <functional>
#include <utility>

namespace zarnet {

/// What all published properties are, whatever they hold: something with an identity, so that an observer can
/// tell which one is about to change (`&property == &model.position`).
class Property {
 public:
  Property() = default;
  Property(const Property&) = delete;
  Property& operator=(const Property&) = delete;

 protected:
  ~Property() = default;
};

/// Told to the observers of an object each time that one of its properties is about to change.
using WillChange = Signal<const Property&>;

/// A property whose owner is observed. Each assignment, also of an equal value, does in this order:
///
/// 1. it tells the owner's observers that this property is about to change,
/// 2. it gives the new value to the subscribers of this property; the property still reads as the old one,
/// 3. it takes the new value,
/// 4. it calls what the owner gave as `changed`.
///
/// It reads as a constant value and is assigned like one:
///
///     if (model.stage == Stage::setup) model.codec = "MP3";
///     for (const Song& song : *model.playlist) …
///
/// Interface thread only, which debug builds assert.
template <class Value>
class Published : public Property {
 public:
  /// `observers` belongs to the owner and outlives the property. The initial value is told to nobody.
  Published(WillChange& observers, Value initial, std::function<void()> changed = nullptr)
      : willChange(observers), value(std::move(initial)), didChange(std::move(changed)) {}

  const Value& operator*() const { return value; }
  const Value* operator->() const { return &value; }
  operator const Value&() const { return value; }  // NOLINT(google-explicit-constructor)

  template <class Other>
  bool operator==(const Other& other) const {
    return value == other;
  }

  Published& operator=(const Published& other) { return *this = other.value; }
  Published& operator=(Value next) {
    assert(onInterfaceThread());
    willChange(*this);
    values(next);
    value = std::move(next);
    if (didChange) didChange();
    return *this;
  }

  /// Counts as one assignment of what `edit` makes of the value. It is edited in place, without a copy, while
  /// nobody subscribes to this property. Requires: `edit` neither raises nor touches the property otherwise.
  template <class Edit>
  void change(Edit edit) {
    if (values.heard()) {
      Value next = value;
      edit(next);
      *this = std::move(next);
      return;
    }
    assert(onInterfaceThread());
    willChange(*this);
    edit(value);
    if (didChange) didChange();
  }

  /// The stream of the property's values: `receiver` is called at once with the present value, then with each
  /// new one, for as long as the subscription lives.
  Subscription subscribe(std::function<void(const Value&)> receiver) {
    receiver(value);
    return values.subscribe(std::move(receiver));
  }

 private:
  WillChange& willChange;
  Value value;
  std::function<void()> didChange;
  Signal<const Value&> values;
};

}  // namespace zarnet
