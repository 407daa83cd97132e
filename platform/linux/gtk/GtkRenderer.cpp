#include "platform/linux/gtk/GtkRenderer.h"

#include "view/wire/WireError.h"

#include <utility>
#include <variant>

namespace tavelle::gtk {

using view::NodeType;

GtkRenderer::GtkRenderer(const Surroundings& surroundings, SetContent setContent, Send send)
    : surroundings_(surroundings),
      setContent_(std::move(setContent)),
      send_(std::move(send)),
      editSource_(makeSource("renderer: edit", [this] { sendEdit(); })) {
  g_source_set_priority(editSource_.get(), G_PRIORITY_HIGH);  // ahead of whatever the person does next
}

void GtkRenderer::apply(const view::Batch& batch) {
  sendEdit();  // or its text would count as older than the batch's
  for (const auto& operation : input_.withoutStaleValues(batch).operations) {
    std::visit([this](const auto& step) { perform(step); }, operation);
  }
}

void GtkRenderer::perform(const view::Create& create) {
  auto& mounted = nodes_[create.node];
  if (mounted.widget) throw view::WireError{"a node was created twice"};
  mounted.widget = make(create, [this, node = create.node](view::Input input) { take(node, std::move(input)); });
  mounted.widget->say(create.attributes);
}

void GtkRenderer::perform(const view::Update& update) {
  at(update.node).widget->say(update.attributes);
}

void GtkRenderer::perform(const view::Insert& insert) {
  auto& mounted = at(insert.node);
  mounted.parent = insert.parent;
  if (insert.parent == 0) return setContent_(mounted.widget->root());
  auto& parent = at(insert.parent);
  parent.children.push_back(insert.node);
  parent.widget->insert(*mounted.widget, widgetAt(insert.after));
}

void GtkRenderer::perform(const view::Move& move) {
  at(move.parent).widget->move(*at(move.node).widget, widgetAt(move.after));
}

void GtkRenderer::perform(const view::Remove& remove) {
  const auto& mounted = at(remove.node);
  if (mounted.parent == 0) {
    setContent_(nullptr);
  } else {
    auto& parent = at(mounted.parent);
    std::erase(parent.children, remove.node);
    parent.widget->remove(*mounted.widget);
  }
  forget(remove.node);
}

void GtkRenderer::forget(view::NodeID node) {
  const auto mounted = nodes_.extract(node);
  for (const auto child : mounted.mapped().children) forget(child);
}

void GtkRenderer::take(view::NodeID node, view::Input input) {
  const bool isEdit = std::holds_alternative<view::Edited>(input);
  if (edit_ && !(isEdit && edit_->node == node)) sendEdit();
  if (!isEdit) return send_(input_.stamp(node, std::move(input)));
  edit_ = {node, std::move(input)};
  g_source_set_ready_time(editSource_.get(), 0);
}

void GtkRenderer::sendEdit() {
  g_source_set_ready_time(editSource_.get(), -1);
  if (auto edit = std::exchange(edit_, std::nullopt)) send_(input_.stamp(edit->node, std::move(edit->input)));
}

GtkRenderer::Mounted& GtkRenderer::at(view::NodeID node) {
  const auto found = nodes_.find(node);
  if (found == nodes_.end()) throw view::WireError{"there is no such node"};
  return found->second;
}

Widget* GtkRenderer::widgetAt(view::NodeID node) {
  return node == 0 ? nullptr : at(node).widget.get();
}

WidgetPtr GtkRenderer::make(const view::Create& create, Widget::Report report) const {
  switch (create.type) {
    case NodeType::tabView:
      return makeTabView(std::move(report), surroundings_.headerBar);
    case NodeType::tab:
      return makeTab();
    case NodeType::form:
      return makeForm();
    case NodeType::section:
      return makeSection();
    case NodeType::list:
      return makeList(std::move(report));
    case NodeType::row:
      return makeRow();
    case NodeType::stack:
      return makeStack();
    case NodeType::labeledContent:
      return makeLabeledContent();
    case NodeType::text:
      return create.attributes.find(view::Attribute::maximumWidth) ? makeWrappedText() : makeText();
    case NodeType::textField:
      return makeTextField(std::move(report));
    case NodeType::secureField:
      return makeSecureField(std::move(report));
    case NodeType::textEditor:
      return makeTextEditor(std::move(report));
    case NodeType::button:
      return makeButton(std::move(report));
    case NodeType::picker:
      return makePicker(std::move(report));
    case NodeType::option:
      return makeOption();
    case NodeType::slider:
      return makeSlider(std::move(report));
    case NodeType::image:
      return makeImage();
    case NodeType::spacer:
      return makeSpacer();
    case NodeType::keyCapture:
      return makeKeyCapture(std::move(report), surroundings_.monitors);
  }
  throw view::WireError{"an unknown type of node"};
}

}  // namespace tavelle::gtk
