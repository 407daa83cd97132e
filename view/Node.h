#pragma once

#include "view/Attributes.h"
#include "view/Event.h"
#include "view/NodeType.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tavelle::view {

class Component;

// How a component is made. Two recipes with the same type make the same kind of component.
struct ComponentRecipe {
  const void* type = nullptr;
  std::function<std::shared_ptr<Component>()> make;
};

enum class Color { secondary, green, red, orange };
enum class Font { body, caption, title };

// A piece of the tree that is to be shown: a plain value, made anew at every drawing, compared and thrown away. It is
// drawn by a renderer, or stands for a component that says what is drawn.
struct Node {
  explicit Node(NodeType nodeType) : type(nodeType) {}
  explicit Node(ComponentRecipe recipe) : component(std::move(recipe)) {}

  NodeType type{};
  ComponentRecipe component;

  // Identity among its siblings, together with the type: a node that has the same key and type as before is the same
  // one, wherever it stands now. Those of one key and type are told apart by their order.
  std::string key;

  Attributes attributes;
  std::function<void(const Input&)> onInput;
  std::vector<Node> children;

  // Said of a node while it is being written down: `text("Not Granted").color(Color::red)`.
  Node with(Attribute attribute, Value value) && {
    attributes.set(attribute, std::move(value));
    return std::move(*this);
  }
  Node keyed(std::string value) && {
    key = std::move(value);
    return std::move(*this);
  }
  Node labeled(std::string name) && { return std::move(*this).with(Attribute::label, std::move(name)); }
  Node mnemonic(std::string letter) && { return std::move(*this).with(Attribute::mnemonic, std::move(letter)); }
  Node color(Color color) &&;
  Node font(Font font) &&;
  Node bold() && { return std::move(*this).with(Attribute::bold, true); }
  Node monospaced() && { return std::move(*this).with(Attribute::monospaced, true); }
  Node monospacedDigits() && { return std::move(*this).with(Attribute::monospacedDigits, true); }
  Node small() && { return std::move(*this).with(Attribute::small, true); }
  Node disabled(bool isDisabled) && { return std::move(*this).with(Attribute::enabled, !isDisabled); }
  Node busy(bool isBusy) && { return std::move(*this).with(Attribute::busy, isBusy); }
  Node width(double points) && { return std::move(*this).with(Attribute::width, points); }
  Node minimumHeight(double points) && { return std::move(*this).with(Attribute::minimumHeight, points); }
  Node maximumWidth(double points) && { return std::move(*this).with(Attribute::maximumWidth, points); }
  Node frame(double width, double height) && { return std::move(*this).width(width).with(Attribute::height, height); }
  Node filling() && { return std::move(*this).with(Attribute::fills, true); }
  Node spacing(double points) && { return std::move(*this).with(Attribute::spacing, points); }
};

}  // namespace tavelle::view
