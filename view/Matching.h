#pragma once

#include "view/NodeType.h"

#include <cstddef>
#include <optional>
#include <string_view>
#include <tuple>
#include <vector>

namespace tavelle::view {

// What makes a node the same one as before.
struct Identity {
  std::string_view key;
  NodeType type;
  const void* component;

  bool operator==(const Identity&) const = default;
  bool operator<(const Identity& other) const {
    return std::tie(key, type, component) < std::tie(other.key, other.type, other.component);
  }
};

// For each of `next`, which of `previous` it goes on as: the first that has its identity and is not taken yet.
using Matches = std::vector<std::optional<std::size_t>>;
Matches match(const std::vector<Identity>& previous, const std::vector<Identity>& next);

// For each match, whether it can stay where it is while the others move around it: as many as possible can.
std::vector<bool> staying(const Matches& matches);

}  // namespace tavelle::view
