#include "desktop/Published.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

namespace zarnet {
namespace {

using testing::ElementsAre;

/// An object with two published properties that writes down everything that happens to them.
struct Observed {
  WillChange willChange;
  std::vector<std::string> events;
  Published<std::string> name{willChange, "old", [this] { events.push_back("took " + *name); }};
  Published<int> number{willChange, 1};
  Subscription observer = willChange.subscribe([this](const Property& property) {
    events.push_back(&property == &name ? "name, still " + *name : "number, still " + std::to_string(number));
  });
};

TEST(Published, TellsObserversThenItsStreamThenTakesTheValueAlsoWhenItIsEqual) {
  Observed object;
  const Subscription stream = object.name.subscribe(
      [&](const std::string& value) { object.events.push_back("gets " + value + " over " + *object.name); });
  EXPECT_THAT(object.events, ElementsAre("gets old over old")) << "a stream begins with the present value";
  object.events.clear();

  object.name = "new";
  object.name = "new";
  object.number = 1;
  EXPECT_THAT(object.events, ElementsAre("name, still old", "gets new over old", "took new",  //
                                         "name, still new", "gets new over new", "took new",  //
                                         "number, still 1"));
}

TEST(Published, CountsAnEditAsOneAssignmentWithAndWithoutAStream) {
  for (const bool streamed : {false, true}) {
    Observed object;
    std::vector<std::string> values;
    Subscription stream;
    if (streamed) stream = object.name.subscribe([&](const std::string& value) { values.push_back(value); });
    object.name.change([](std::string& name) { name.append("er").append(" still"); });
    EXPECT_THAT(object.events, ElementsAre("name, still old", "took older still"));
    EXPECT_EQ(values,
              streamed ? (std::vector<std::string>{"old", "older still"}) : std::vector<std::string>{});
  }
}

TEST(Signal, AllowsReceiversToEndSubscribeAndRaiseAgainWhileTheyAreCalled) {
  Signal<int> signal;
  std::vector<std::string> heard;
  const auto hears = [&](const std::string& who) {
    return [&heard, who](int value) { heard.push_back(who + std::to_string(value)); };
  };
  Subscription late;
  Subscription itself;
  Subscription last;
  itself = signal.subscribe([&](int value) {
    heard.push_back("first" + std::to_string(value));
    itself = {};
    last = {};
    late = signal.subscribe(hears("late"));
    if (value == 1) signal(2);
  });
  const Subscription steady = signal.subscribe(hears("steady"));
  last = signal.subscribe(hears("last"));
  signal(1);
  EXPECT_THAT(heard, ElementsAre("first1", "steady2", "late2", "steady1"));
}

}  // namespace
}  // namespace zarnet
