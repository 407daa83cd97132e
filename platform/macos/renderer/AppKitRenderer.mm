#include "platform/macos/renderer/AppKitRenderer.h"

#include "platform/macos/renderer/Controls.h"
#include "platform/macos/renderer/TabView.h"
#include "view/Input.h"
#include "view/KeyDownListener.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace tavelle::appkit {
namespace {

using view::NodeType;

// A child with a KeyCaptureView behind it, which is no view of its own here: all that it has is its monitor.
class KeyCapture : public Wrapper {
 public:
  KeyCapture(view::EventMonitors& monitors, Send send) : monitors_(monitors), send_(std::move(send)) {
    capture_->viewDidMoveToWindow(monitors_);
  }
  ~KeyCapture() override { capture_->removeFromSuperview(monitors_); }

  void update() override { listener().updateView(*capture_); }

 private:
  view::KeyDownListener listener() const {
    return {isTrue(Attribute::enabled, true), [send = send_](const view::KeyDown& key) { send(key); }};
  }

  view::EventMonitors& monitors_;
  Send send_;
  std::shared_ptr<view::KeyCaptureView> capture_ = listener().makeView();
};

}  // namespace

AppKitRenderer::AppKitRenderer(NSWindow* window, std::function<void(const view::Event&)> dispatch)
    : window_(window), dispatch_(std::move(dispatch)) {
  window_.contentView = root_.view();
}

AppKitRenderer::~AppKitRenderer() = default;

void AppKitRenderer::apply(const view::Batch& batch) {
  for (const auto& operation : input_.withoutStaleValues(batch).operations) {
    std::visit([this](const auto& step) { perform(step); }, operation);
  }
  for (auto* widget : std::exchange(rearranged_, {})) widget->arrange();
}

void AppKitRenderer::perform(const view::Create& create) {
  auto widget = make(create.type, [this, node = create.node](view::Input input) { take(node, std::move(input)); });
  widget->attributes = create.attributes;
  widget->update();
  widgets_.emplace(create.node, std::move(widget));
}

// Nobody says of a node what the person has just made of it: the widget knows from here.
void AppKitRenderer::take(view::NodeID node, view::Input input) {
  if (auto value = view::newValue(input)) at(node).attributes.set(Attribute::value, *std::move(value));
  dispatch_(input_.stamp(node, std::move(input)));
}

void AppKitRenderer::perform(const view::Update& update) {
  Widget& widget = at(update.node);
  for (const auto& [attribute, value] : update.attributes) {
    if (std::holds_alternative<std::monostate>(value)) {
      widget.attributes.erase(attribute);
    } else {
      widget.attributes.set(attribute, value);
    }
  }
  widget.update();
}

void AppKitRenderer::perform(const view::Insert& insert) {
  place(at(insert.node), insert.parent, insert.after);
}

void AppKitRenderer::perform(const view::Move& move) {
  Widget& widget = at(move.node);
  detach(widget);
  place(widget, move.parent, move.after);
}

void AppKitRenderer::perform(const view::Remove& remove) {
  Widget& widget = at(remove.node);
  detach(widget);
  [widget.view() removeFromSuperview];
  forget(widget);
}

Widget& AppKitRenderer::at(view::NodeID node) {
  return *widgets_.at(node);
}

void AppKitRenderer::place(Widget& widget, view::NodeID parent, view::NodeID after) {
  Widget& owner = parent == 0 ? root_ : at(parent);
  auto position = owner.children.begin();
  if (after != 0) position = std::find(position, owner.children.end(), &at(after)) + 1;
  owner.children.insert(position, &widget);
  widget.parent = &owner;
  rearranged_.insert(&owner);
}

void AppKitRenderer::detach(Widget& widget) {
  std::erase(widget.parent->children, &widget);
  rearranged_.insert(widget.parent);
}

void AppKitRenderer::forget(Widget& widget) {
  for (auto* child : widget.children) forget(*child);
  rearranged_.erase(&widget);
  std::erase_if(widgets_, [&widget](const auto& entry) { return entry.second.get() == &widget; });
}

std::unique_ptr<Widget> AppKitRenderer::make(NodeType type, Send send) {
  switch (type) {
    case NodeType::tabView:
      return makeTabView(window_, std::move(send));
    case NodeType::tab:
      return std::make_unique<Wrapper>();
    case NodeType::form:
      return makeForm();
    case NodeType::section:
      return makeSection();
    case NodeType::list:
      return makeList(std::move(send));
    case NodeType::row:
      return makeRow();
    case NodeType::stack:
      return makeStackWidget();
    case NodeType::labeledContent:
      return makeLabeledContent();
    case NodeType::text:
      return makeText();
    case NodeType::textField:
      return makeTextField(false, std::move(send));
    case NodeType::secureField:
      return makeTextField(true, std::move(send));
    case NodeType::textEditor:
      return makeTextEditor(std::move(send));
    case NodeType::button:
      return makeButton(std::move(send));
    case NodeType::picker:
      return makePicker(std::move(send));
    case NodeType::option:
      return makeOption();
    case NodeType::slider:
      return makeSlider(std::move(send));
    case NodeType::image:
      return makeImage();
    case NodeType::spacer:
      return makeSpacer();
    case NodeType::keyCapture:
      return std::make_unique<KeyCapture>(monitors_, std::move(send));
  }
}

}  // namespace tavelle::appkit
