#include "tests/app/ScreenReader.h"

#include "tests/support/Wait.h"

#include <memory>
#include <sstream>
#include <vector>

#include <atspi/atspi.h>
#include <gtest/gtest.h>

namespace zarnet::test {

namespace {

struct Unref {
  void operator()(gpointer object) const { g_object_unref(object); }
};
using Node = std::unique_ptr<AtspiAccessible, Unref>;

std::string taken(gchar* text) {
  const std::string copy = text == nullptr ? "" : text;
  g_free(text);
  return copy;
}

bool hasState(AtspiAccessible* node, AtspiStateType state) {
  AtspiStateSet* states = atspi_accessible_get_state_set(node);
  if (states == nullptr) return false;
  const bool contains = atspi_state_set_contains(states, state) != 0;
  g_object_unref(states);
  return contains;
}

std::string nameOf(AtspiAccessible* node) {
  return taken(atspi_accessible_get_name(node, nullptr));
}
std::string roleOf(AtspiAccessible* node) {
  return taken(atspi_accessible_get_role_name(node, nullptr));
}

std::vector<Node> childrenOf(AtspiAccessible* node) {
  std::vector<Node> children;
  const int count = atspi_accessible_get_child_count(node, nullptr);
  for (int i = 0; i < count; ++i) {
    if (AtspiAccessible* child = atspi_accessible_get_child_at_index(node, i, nullptr))
      children.emplace_back(child);
  }
  return children;
}

/// The first node below `node`, itself included, that `wanted` accepts.
Node find(Node node, const std::function<bool(AtspiAccessible*)>& wanted) {
  if (wanted(node.get())) return node;
  for (Node& child : childrenOf(node.get())) {
    if (Node found = find(std::move(child), wanted)) return found;
  }
  return nullptr;
}

Node findIn(pid_t program, const std::function<bool(AtspiAccessible*)>& wanted) {
  const Node desktop(atspi_get_desktop(0));
  atspi_accessible_set_cache_mask(desktop.get(), ATSPI_CACHE_NONE);
  for (Node& application : childrenOf(desktop.get())) {
    if (static_cast<pid_t>(atspi_accessible_get_process_id(application.get(), nullptr)) != program) continue;
    atspi_accessible_clear_cache(application.get());
    if (Node found = find(std::move(application), wanted)) return found;
  }
  return nullptr;
}

auto called(const std::string& name, const std::string& role) {
  return [name, role](AtspiAccessible* node) {
    return nameOf(node) == name && (role.empty() || roleOf(node) == role) &&
           hasState(node, ATSPI_STATE_SHOWING);
  };
}

}  // namespace

void wakeAccessibilityBus() {
  atspi_init();
  const Node desktop(atspi_get_desktop(0));
  EXPECT_TRUE(waitUntil([&] { return atspi_accessible_get_child_count(desktop.get(), nullptr) >= 0; }));
}

ScreenReader::ScreenReader(pid_t ofProgram) : program(ofProgram) {
  wakeAccessibilityBus();
}

bool ScreenReader::seesNow(const std::string& name, const std::string& role) const {
  return findIn(program, called(name, role)) != nullptr;
}

bool ScreenReader::sees(const std::string& name, const std::string& role, std::chrono::seconds limit) const {
  const bool seen = waitUntil([&] { return seesNow(name, role); }, limit);
  if (!seen) ADD_FAILURE() << "nothing shows “" << name << "” among\n" << transcript();
  return seen;
}

void ScreenReader::press(const std::string& name, const std::string& role) const {
  Node node;
  const bool ready = waitUntil(
      [&] {
        node = findIn(program, [&](AtspiAccessible* candidate) {
          if (!called(name, role)(candidate) || !hasState(candidate, ATSPI_STATE_ENABLED)) return false;
          AtspiAction* action = atspi_accessible_get_action_iface(candidate);
          if (action == nullptr) return false;
          g_object_unref(action);
          return true;
        });
        return node != nullptr;
      },
      std::chrono::seconds(60));
  if (!ready) {
    ADD_FAILURE() << "“" << name << "” cannot be pressed among\n" << transcript();
    return;
  }
  AtspiAction* action = atspi_accessible_get_action_iface(node.get());
  EXPECT_TRUE(atspi_action_do_action(action, 0, nullptr)) << name;
  g_object_unref(action);
}

bool ScreenReader::isSelected(const std::string& name) const {
  const Node node = findIn(program, called(name, ""));
  return node != nullptr && hasState(node.get(), ATSPI_STATE_SELECTED);
}

void ScreenReader::type(const std::string& text) const {
  Node node;
  const bool ready = waitUntil(
      [&] {
        node = findIn(program, [](AtspiAccessible* candidate) {
          return hasState(candidate, ATSPI_STATE_EDITABLE) && hasState(candidate, ATSPI_STATE_SHOWING);
        });
        return node != nullptr;
      },
      std::chrono::seconds(60));
  if (!ready) {
    ADD_FAILURE() << "there is no text field among\n" << transcript();
    return;
  }
  AtspiEditableText* field = atspi_accessible_get_editable_text_iface(node.get());
  EXPECT_TRUE(atspi_editable_text_set_text_contents(field, text.c_str(), nullptr));
  g_object_unref(field);
}

std::string ScreenReader::transcript() const {
  std::ostringstream lines;
  findIn(program, [&](AtspiAccessible* node) {
    if (hasState(node, ATSPI_STATE_SHOWING)) {
      lines << roleOf(node) << ": " << nameOf(node)
            << (hasState(node, ATSPI_STATE_SELECTED) ? " [selected]" : "")
            << (hasState(node, ATSPI_STATE_ENABLED) ? "" : " [disabled]") << "\n";
    }
    return false;
  });
  return lines.str();
}

}  // namespace zarnet::test
