#pragma once

#include "view/Attributes.h"
#include "view/Event.h"

#include <optional>
#include <string>
#include <variant>

namespace tavelle::view {

// The value that a node has now that the person did this; none for what changes no value.
inline std::optional<Value> newValue(const Input& input) {
  if (const auto* edited = std::get_if<Edited>(&input)) return edited->text;
  if (const auto* adjusted = std::get_if<Adjusted>(&input)) return adjusted->value;
  if (const auto* selected = std::get_if<Selected>(&input)) return selected->tag;
  return std::nullopt;
}

}  // namespace tavelle::view
