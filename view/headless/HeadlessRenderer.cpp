#include "view/headless/HeadlessRenderer.h"

#include "view/Input.h"
#include "view/headless/Description.h"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <utility>

namespace tavelle::view {
namespace {

constexpr std::uint64_t eventMaskFlagsChanged = 1 << 12;

using Widget = HeadlessRenderer::Widget;

bool isNamed(const Widget& widget, std::string_view name) {
  for (const auto attribute : {Attribute::title, Attribute::text, Attribute::label, Attribute::symbol}) {
    if (widget.string(attribute) == name) return true;
  }
  return false;
}

// From the top, each before what is in it.
void visit(const Widget& widget, const std::function<void(const Widget&)>& see) {
  see(widget);
  for (const auto& child : widget.children) visit(*child, see);
}

bool isEditable(const Widget& widget) {
  return widget.type == NodeType::textField || widget.type == NodeType::secureField ||
         widget.type == NodeType::textEditor;
}

void require(bool holds, const std::string& otherwise) {
  if (!holds) throw std::logic_error{otherwise};
}

}  // namespace

std::string Widget::string(Attribute attribute) const {
  const auto* const value = attributes.get<std::string>(attribute);
  return value ? *value : "";
}

bool Widget::isEnabled() const {
  const auto* const enabled = attributes.get<bool>(Attribute::enabled);
  return !enabled || *enabled;
}

void HeadlessRenderer::apply(const Batch& batch) {
  ++batches_;
  for (const auto& operation : input_.withoutStaleValues(batch).operations) {
    log_.push_back(describe(operation));
    std::visit([this](const auto& step) { perform(step); }, operation);
  }
  require(created_.empty(), "a node was created and never inserted");
}

void HeadlessRenderer::perform(const Create& create) {
  auto widget = std::make_unique<Widget>();
  widget->node = create.node;
  widget->type = create.type;
  widget->attributes = create.attributes;
  widget->cursor = widget->string(Attribute::value).size();
  require(widgets_.emplace(create.node, widget.get()).second, "a node was created twice");
  created_.emplace(create.node, std::move(widget));
}

void HeadlessRenderer::perform(const Update& update) {
  Widget& widget = at(update.node);
  for (const auto& [attribute, value] : update.attributes) {
    if (std::holds_alternative<std::monostate>(value)) {
      widget.attributes.erase(attribute);
    } else {
      widget.attributes.set(attribute, value);
    }
  }
  widget.cursor = std::min(widget.cursor, widget.string(Attribute::value).size());
  if (widget.capture) listener(widget).updateView(*widget.capture);
}

void HeadlessRenderer::perform(const Insert& insert) {
  auto created = created_.extract(insert.node);
  require(!created.empty(), "a node was inserted that is not new");
  place(std::move(created.mapped()), insert.parent, insert.after);
  Widget& widget = at(insert.node);
  if (widget.type != NodeType::keyCapture) return;
  widget.capture = listener(widget).makeView();
  widget.capture->viewDidMoveToWindow(*this);
  listener(widget).updateView(*widget.capture);
}

void HeadlessRenderer::perform(const Move& move) {
  Widget& widget = at(move.node);
  require(widget.parent && widget.parent->node == move.parent, "a node was moved to another parent");
  place(detach(widget), move.parent, move.after);
}

void HeadlessRenderer::perform(const Remove& remove) {
  const auto gone = detach(at(remove.node));
  visit(*gone, [this](const Widget& widget) { forget(widget); });
}

HeadlessRenderer::Widget& HeadlessRenderer::at(NodeID node) const {
  const auto found = widgets_.find(node);
  require(found != widgets_.end(), "there is no node " + std::to_string(node));
  return *found->second;
}

void HeadlessRenderer::place(std::unique_ptr<Widget> widget, NodeID parent, NodeID after) {
  Widget& owner = parent == 0 ? root_ : at(parent);
  auto position = owner.children.begin();
  if (after != 0) {
    position = std::find_if(position, owner.children.end(), [after](const auto& one) { return one->node == after; });
    require(position != owner.children.end(), "there is no such sibling to stand behind");
    ++position;
  }
  widget->parent = &owner;
  owner.children.insert(position, std::move(widget));
}

std::unique_ptr<HeadlessRenderer::Widget> HeadlessRenderer::detach(Widget& widget) {
  require(widget.parent != nullptr, "a node was taken away that stands nowhere");
  auto& siblings = widget.parent->children;
  const auto self =
      std::find_if(siblings.begin(), siblings.end(), [&widget](const auto& one) { return one.get() == &widget; });
  auto detached = std::move(*self);
  siblings.erase(self);
  return detached;
}

void HeadlessRenderer::forget(const Widget& widget) {
  if (widget.capture) widget.capture->removeFromSuperview(*this);
  if (focus_ == widget.node) focus_ = 0;
  widgets_.erase(widget.node);
}

KeyDownListener HeadlessRenderer::listener(const Widget& widget) {
  return {widget.isEnabled(), [this, node = widget.node](const KeyDown& event) { send_(input_.stamp(node, event)); }};
}

EventMonitors::Token HeadlessRenderer::addLocalMonitorForEventsMatchingMask(std::uint64_t mask, Block block) {
  monitors_.emplace(++lastMonitor_, Monitor{mask, std::move(block)});
  return lastMonitor_;
}

void HeadlessRenderer::removeMonitor(Token token) {
  monitors_.erase(token);
}

const HeadlessRenderer::Widget* HeadlessRenderer::find(const std::function<bool(const Widget&)>& matches) const {
  const Widget* found = nullptr;
  visit(root_, [&](const Widget& widget) {
    if (!found && &widget != &root_ && matches(widget)) found = &widget;
  });
  return found;
}

bool HeadlessRenderer::shows(std::string_view name) const {
  return find([name](const Widget& widget) { return isNamed(widget, name); }) != nullptr;
}

const HeadlessRenderer::Widget& HeadlessRenderer::widget(std::string_view name) const {
  const auto* const found = find([name](const Widget& widget) { return isNamed(widget, name); });
  require(found != nullptr, "\"" + std::string{name} + "\" is not shown, but: " + everything());
  return *found;
}

const HeadlessRenderer::Widget& HeadlessRenderer::widget(NodeType type, std::size_t index) const {
  const auto found = all(type);
  require(index < found.size(), "there are not as many, but: " + everything());
  return *found[index];
}

std::vector<const HeadlessRenderer::Widget*> HeadlessRenderer::all(NodeType type) const {
  std::vector<const Widget*> found;
  visit(root_, [&](const Widget& widget) {
    if (&widget != &root_ && widget.type == type) found.push_back(&widget);
  });
  return found;
}

std::vector<std::string> HeadlessRenderer::texts() const {
  std::vector<std::string> found;
  visit(root_, [&](const Widget& widget) {
    for (const auto attribute : {Attribute::title, Attribute::text, Attribute::symbol}) {
      if (auto words = widget.string(attribute); !words.empty()) found.push_back(std::move(words));
    }
  });
  return found;
}

std::string HeadlessRenderer::everything() const {
  std::string words;
  for (const auto& text : texts()) words += " \"" + text + "\"";
  return words;
}

std::string HeadlessRenderer::value(std::string_view name) const {
  return widget(name).string(Attribute::value);
}

std::string HeadlessRenderer::focused() const {
  if (focus_ == 0) return "";
  const Widget& field = at(focus_);
  return field.string(Attribute::title) + field.string(Attribute::label);
}

void HeadlessRenderer::press(std::string_view name) {
  const auto* const button =
      find([name](const Widget& one) { return one.type == NodeType::button && isNamed(one, name); });
  require(button != nullptr, "there is no button \"" + std::string{name} + "\", but: " + everything());
  if (button->isEnabled()) send_(input_.stamp(button->node, Pressed{}));
}

void HeadlessRenderer::choose(const Widget& chooser, std::string_view tag) {
  const bool exists = std::any_of(chooser.children.begin(), chooser.children.end(),
                                  [tag](const auto& one) { return one->string(Attribute::tag) == tag; });
  require(exists || tag.empty(), "there is no choice " + std::string{tag} + ", but: " + everything());
  at(chooser.node).attributes.set(Attribute::value, std::string{tag});
  send_(input_.stamp(chooser.node, Selected{std::string{tag}}));
}

void HeadlessRenderer::adjust(const Widget& slider, double value) {
  at(slider.node).attributes.set(Attribute::value, value);
  send_(input_.stamp(slider.node, Adjusted{value}));
}

void HeadlessRenderer::focus(const Widget& field) {
  require(isEditable(field), "nothing can be typed into this");
  focus_ = field.node;
}

void HeadlessRenderer::moveCursor(std::size_t position) {
  at(focus_).cursor = position;
}

void HeadlessRenderer::type(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    std::size_t end = at + 1;
    while (end < text.size() && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U) ++end;
    keyDown({}, text.substr(at, end - at));
    at = end;
  }
}

void HeadlessRenderer::replaceText(const Widget& field, std::string_view text) {
  focus(field);
  edit(at(focus_), std::string{text}, text.size());
}

void HeadlessRenderer::edit(Widget& field, std::string text, std::size_t cursor) {
  field.attributes.set(Attribute::value, text);
  field.cursor = cursor;
  send_(input_.stamp(field.node, Edited{std::move(text)}));
}

void HeadlessRenderer::keyDown(const KeyDown& event, std::string_view text) {
  std::optional<KeyDown> left = event;
  const auto monitors = monitors_;  // a handler may add and remove some
  for (const auto& [token, monitor] : monitors) {
    if (left && (monitor.mask & eventMaskKeyDown) != 0) left = monitor.block(*left);
  }
  if (!left || focus_ == 0) return;
  Widget& field = at(focus_);
  auto edited = field.string(Attribute::value);
  edited.insert(field.cursor, text);
  edit(field, std::move(edited), field.cursor + text.size());
}

void HeadlessRenderer::modifiersChange() {
  for (const auto& [token, monitor] : monitors_) {
    if ((monitor.mask & eventMaskFlagsChanged) != 0) monitor.block({});
  }
}

}  // namespace tavelle::view
