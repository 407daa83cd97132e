#pragma once

#include "view/Attributes.h"
#include "view/NodeType.h"

#include <optional>
#include <string_view>

namespace tavelle::view {

// The names of the enumerators, as they are written in the code.
std::string_view nameOf(NodeType type);
std::string_view nameOf(Attribute attribute);
std::optional<NodeType> nodeTypeNamed(std::string_view name);
std::optional<Attribute> attributeNamed(std::string_view name);

}  // namespace tavelle::view
