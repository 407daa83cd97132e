#include "view/Nodes.h"

#include <algorithm>
#include <cmath>

namespace tavelle::view {
namespace {

// Input of another kind is a renderer's mistake, and nobody's.
template <typename Kind>
std::function<void(const Input&)> on(std::function<void(const Kind&)> handler) {
  return [handler = std::move(handler)](const Input& input) {
    if (const auto* kind = std::get_if<Kind>(&input)) handler(*kind);
  };
}

Node editable(NodeType type, Binding<std::string> text) {
  Node node = Node{type}.with(Attribute::value, text.get());
  node.onInput = on<Edited>([set = std::move(text.set)](const Edited& edited) { set(edited.text); });
  return node;
}

Node selectable(NodeType type, Binding<std::string> selection, std::vector<Node> children) {
  Node node = Node{type}.with(Attribute::value, selection.get());
  node.onInput = on<Selected>([set = std::move(selection.set)](const Selected& selected) { set(selected.tag); });
  node.children = std::move(children);
  return node;
}

Node pressable(std::function<void()> action) {
  Node node{NodeType::button};
  node.onInput = on<Pressed>([action = std::move(action)](const Pressed&) { action(); });
  return node;
}

}  // namespace

Node Node::color(Color color) && {
  static constexpr const char* names[] = {"secondary", "green", "red", "orange"};
  return std::move(*this).with(Attribute::color, names[static_cast<std::size_t>(color)]);
}

Node Node::font(Font font) && {
  static constexpr const char* names[] = {"body", "caption", "title"};
  return std::move(*this).with(Attribute::font, names[static_cast<std::size_t>(font)]);
}

Node list(Binding<std::string> selection, std::vector<Node> rows) {
  return selectable(NodeType::list, std::move(selection), std::move(rows));
}

Node picker(std::string title, Binding<std::string> selection, std::vector<Node> options) {
  return selectable(NodeType::picker, std::move(selection), std::move(options)).with(Attribute::title, title);
}

Node option(std::string tag, std::string title) {
  return Node{NodeType::option}.keyed(tag).with(Attribute::tag, tag).with(Attribute::title, std::move(title));
}

Node textField(std::string title, Binding<std::string> text) {
  return editable(NodeType::textField, std::move(text)).with(Attribute::title, std::move(title));
}

Node secureField(std::string title, Binding<std::string> text) {
  return editable(NodeType::secureField, std::move(text)).with(Attribute::title, std::move(title));
}

Node textEditor(Binding<std::string> text) {
  return editable(NodeType::textEditor, std::move(text));
}

Node slider(Binding<double> value, double minimum, double maximum, int stepsPerUnit) {
  Node node = Node{NodeType::slider}
                  .with(Attribute::value, value.get())
                  .with(Attribute::minimum, minimum)
                  .with(Attribute::maximum, maximum)
                  .with(Attribute::step, 1.0 / stepsPerUnit);
  node.onInput = on<Adjusted>([=, set = std::move(value.set)](const Adjusted& adjusted) {
    if (std::isfinite(adjusted.value)) {
      set(std::round(std::clamp(adjusted.value, minimum, maximum) * stepsPerUnit) / stepsPerUnit);
    }
  });
  return node;
}

Node button(std::string title, std::function<void()> action) {
  return pressable(std::move(action)).with(Attribute::title, std::move(title));
}

Node symbolButton(std::string symbol, std::string label, std::function<void()> action) {
  return pressable(std::move(action)).with(Attribute::symbol, std::move(symbol)).labeled(std::move(label));
}

Node text(std::string text) {
  return Node{NodeType::text}.with(Attribute::text, std::move(text));
}

Node image(std::string name) {
  return Node{NodeType::image}.with(Attribute::image, std::move(name));
}

Node spacer() {
  return Node{NodeType::spacer};
}

Node keyCapture(bool isEnabled, std::function<void(const KeyDown&)> handler, Node content) {
  Node node = Node{NodeType::keyCapture}.with(Attribute::enabled, isEnabled);
  node.onInput = on<KeyDown>(std::move(handler));
  node.children.push_back(std::move(content));
  return node;
}

}  // namespace tavelle::view
