#pragma once

#include "playback/AudioPlayer.h"

#include <optional>
#include <string_view>
#include <variant>

namespace zarnet {

/// What a player's status holds under a key; none when there is nothing or something of another type.
template <class Value>
std::optional<Value> statusValue(const PlayerStatus& status, std::string_view key) {
  const auto entry = status.find(key);
  if (entry == status.end() || !std::holds_alternative<Value>(entry->second)) return std::nullopt;
  return std::get<Value>(entry->second);
}

}  // namespace zarnet
