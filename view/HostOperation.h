#pragma once

#include "view/Attributes.h"
#include "view/Event.h"
#include "view/NodeType.h"

#include <cstdint>
#include <variant>
#include <vector>

namespace tavelle::view {

// What a renderer has to do, one step at a time. Plain values, which can go to another process.

// Makes a node, which is then inserted before anything else is said of it.
struct Create {
  NodeID node;
  NodeType type;
  Attributes attributes;
  bool operator==(const Create&) const = default;
};

// Changes what is said of a node; an attribute without a value is not said any more.
struct Update {
  NodeID node;
  Attributes attributes;
  bool operator==(const Update&) const = default;
};

// Puts a new node among the children of `parent`, right behind `after`; in front where that is 0.
struct Insert {
  NodeID parent;
  NodeID node;
  NodeID after;
  bool operator==(const Insert&) const = default;
};

// Puts a node elsewhere among the children of its parent.
struct Move {
  NodeID parent;
  NodeID node;
  NodeID after;
  bool operator==(const Move&) const = default;
};

// Takes a node away, and everything below it.
struct Remove {
  NodeID node;
  bool operator==(const Remove&) const = default;
};

using HostOperation = std::variant<Create, Update, Insert, Move, Remove>;

// The steps that belong together: nothing is drawn between them.
struct Batch {
  std::uint64_t lastEvent;  // the number of the last event that had been heard when this was made; see UnseenInput
  std::vector<HostOperation> operations;

  bool operator==(const Batch&) const = default;
};

}  // namespace tavelle::view
