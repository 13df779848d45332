#include "desktop/Published.h"

#include <gmock/gmock.h>

namespace zarnet {
namespace {

using testing::ElementsAre;

/// A property whose owner, observer and subscriber write down what they are told.
struct Observed {
  WillChange willChange;
  std::vector<std::string> events;
  Published<std::string> name{willChange, "old", [this] { events.push_back("took " + *name); }};
  Subscription observer = willChange.subscribe([this](const Property& property) {
    EXPECT_EQ(&property, &name);
    events.push_back("still " + *name);
  });
};

TEST(Published, TellsObserversThenItsStreamThenTakesTheValueAlsoWhenItIsEqual) {
  Observed object;
  object.name.change([](std::string& name) { name.append("er"); });
  EXPECT_THAT(object.events, ElementsAre("still old", "took older"));
  object.events.clear();
  const Subscription stream = object.name.subscribe(
      [&](const std::string& value) { object.events.push_back("gets " + value + " over " + *object.name); });
  object.name = "new";
  object.name = "new";
  object.name.change([](std::string& name) { name.append("er"); });
  EXPECT_THAT(object.events, ElementsAre("gets older over older",                           //
                                         "still older", "gets new over older", "took new",  //
                                         "still new", "gets new over new", "took new",      //
                                         "still new", "gets newer over new", "took newer"));
}

TEST(Signal, AllowsReceiversToEndSubscribeAndRaiseAgainWhileTheyAreCalled) {
  Signal<int> signal;
  std::vector<int> heard;
  Subscription late;
  Subscription last;
  Subscription first = signal.subscribe([&](int value) {
    heard.push_back(value);
    first = {};
    last = {};
    late = signal.subscribe([&](int other) { heard.push_back(10 * other); });
    signal(2);
  });
  const Subscription steady = signal.subscribe([&](int value) { heard.push_back(100 * value); });
  last = signal.subscribe([&](int) { ADD_FAILURE() << "has ended"; });
  signal(1);
  EXPECT_THAT(heard, ElementsAre(1, 200, 20, 100));
}

}  // namespace
}  // namespace zarnet
