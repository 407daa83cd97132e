#pragma once

#include <cstdint>
#include <string>
#include <variant>

namespace tavelle::view {

// A node as the renderer knows it: numbered from 1, never used twice. 0 is the place where the root stands.
using NodeID = std::uint64_t;

// What a person can do to a node.
struct Pressed {
  bool operator==(const Pressed&) const = default;
};
struct Edited {
  std::string text;  // the whole of it, UTF-8
  bool operator==(const Edited&) const = default;
};
struct Adjusted {
  double value;
  bool operator==(const Adjusted&) const = default;
};
struct Selected {
  std::string tag;  // empty for none
  bool operator==(const Selected&) const = default;
};
// A key went down while a capture was enabled, and nobody else hears of it.
struct KeyDown {
  std::uint16_t keyCode;        // the platform's virtual key code
  std::uint32_t modifierFlags;  // NSEvent's
  bool operator==(const KeyDown&) const = default;
};

using Input = std::variant<Pressed, Edited, Adjusted, Selected, KeyDown>;

// One thing that the person did, as the renderer reports it. A renderer numbers its events from 1, one by one.
struct Event {
  NodeID target;
  std::uint64_t number;
  Input input;

  bool operator==(const Event&) const = default;
};

}  // namespace tavelle::view
