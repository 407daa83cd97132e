#pragma once

#include "view/Binding.h"
#include "view/Node.h"

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace tavelle::view {

namespace detail {
inline void append(std::vector<Node>& all, Node node) {
  all.push_back(std::move(node));
}
inline void append(std::vector<Node>& all, std::optional<Node> node) {
  if (node) all.push_back(*std::move(node));
}
inline void append(std::vector<Node>& all, std::vector<Node> nodes) {
  for (auto& node : nodes) all.push_back(std::move(node));
}

// `content` is a node, perhaps a node, or many, in any number.
template <typename... Content>
Node containing(Node node, Content... content) {
  (append(node.children, std::move(content)), ...);
  return node;
}
}  // namespace detail

template <typename... Sections>
Node form(Sections... sections) {
  return detail::containing(Node{NodeType::form}, std::move(sections)...);
}

// Known by its header. An empty one is not shown.
template <typename... Rows>
Node section(std::string header, Rows... rows) {
  Node node{NodeType::section};
  node.key = header;
  if (!header.empty()) node.attributes.set(Attribute::title, std::move(header));
  return detail::containing(std::move(node), std::move(rows)...);
}

template <typename... Items>
Node horizontalStack(Items... items) {
  return detail::containing(Node{NodeType::stack}.with(Attribute::axis, "horizontal"), std::move(items)...);
}

template <typename... Items>
Node verticalStack(Items... items) {
  return detail::containing(Node{NodeType::stack}.with(Attribute::axis, "vertical"), std::move(items)...);
}

template <typename... Items>
Node labeledContent(std::string title, Items... items) {
  return detail::containing(Node{NodeType::labeledContent}.with(Attribute::title, std::move(title)),
                            std::move(items)...);
}

// A row of a list, known by its tag.
template <typename... Items>
Node row(std::string tag, Items... items) {
  return detail::containing(Node{NodeType::row}.keyed(tag).with(Attribute::tag, tag), std::move(items)...);
}

// Each shows and changes what it is bound to. `selection` is the tag of one of the rows or options; empty for none.
Node list(Binding<std::string> selection, std::vector<Node> rows);
Node picker(std::string title, Binding<std::string> selection, std::vector<Node> options);
Node option(std::string tag, std::string title);
Node textField(std::string title, Binding<std::string> text);
Node secureField(std::string title, Binding<std::string> text);
Node textEditor(Binding<std::string> text);

// From `minimum` to `maximum` in steps of 1 / `stepsPerUnit`: what is set is always the number nearest to a step.
Node slider(Binding<double> value, double minimum, double maximum, int stepsPerUnit);

Node button(std::string title, std::function<void()> action);
Node symbolButton(std::string symbol, std::string label, std::function<void()> action);

Node text(std::string text);
Node image(std::string name);
Node spacer();

// `content`, with a KeyCaptureView behind it.
Node keyCapture(bool isEnabled, std::function<void(const KeyDown&)> handler, Node content);

}  // namespace tavelle::view
