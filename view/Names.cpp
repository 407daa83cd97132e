#include "view/Names.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace tavelle::view {
namespace {

using namespace std::string_view_literals;

// In the order of the enumerations.
constexpr std::array nodeTypes{
    "tabView"sv,        "tab"sv,    "form"sv,      "section"sv,     "list"sv,       "row"sv,    "stack"sv,
    "labeledContent"sv, "text"sv,   "textField"sv, "secureField"sv, "textEditor"sv, "button"sv, "picker"sv,
    "option"sv,         "slider"sv, "image"sv,     "spacer"sv,      "keyCapture"sv,
};
constexpr std::array attributes{
    "title"sv,         "text"sv,         "value"sv,   "tag"sv,        "label"sv,
    "mnemonic"sv,      "symbol"sv,       "image"sv,   "enabled"sv,    "busy"sv,
    "color"sv,         "font"sv,         "bold"sv,    "monospaced"sv, "monospacedDigits"sv,
    "small"sv,         "axis"sv,         "spacing"sv, "width"sv,      "height"sv,
    "minimumHeight"sv, "maximumWidth"sv, "fills"sv,   "minimum"sv,    "maximum"sv,
    "step"sv,
};
static_assert(nodeTypes.size() == static_cast<std::size_t>(NodeType::keyCapture) + 1);
static_assert(attributes.size() == static_cast<std::size_t>(Attribute::step) + 1);

template <typename Enumeration, std::size_t count>
std::optional<Enumeration> named(const std::array<std::string_view, count>& names, std::string_view name) {
  const auto* const found = std::find(names.begin(), names.end(), name);
  return found == names.end() ? std::nullopt : std::optional{static_cast<Enumeration>(found - names.begin())};
}

}  // namespace

std::string_view nameOf(NodeType type) {
  return nodeTypes.at(static_cast<std::size_t>(type));
}

std::string_view nameOf(Attribute attribute) {
  return attributes.at(static_cast<std::size_t>(attribute));
}

std::optional<NodeType> nodeTypeNamed(std::string_view name) {
  return named<NodeType>(nodeTypes, name);
}

std::optional<Attribute> attributeNamed(std::string_view name) {
  return named<Attribute>(attributes, name);
}

}  // namespace tavelle::view
