#include "platform/linux/gtk/Widget.h"

#include "view/wire/WireError.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace tavelle::gtk {

using view::Attribute;

Widget::Widget(GtkWidget* root, Report report)
    : root_(GTK_WIDGET(g_object_ref_sink(root))), report_(std::move(report)) {}

Widget::~Widget() {
  for (const auto& connection : connections_) {
    g_signal_handler_disconnect(connection.instance.get(), connection.handler);
  }
}

void Widget::say(const view::Attributes& changes) {
  for (const auto& [attribute, value] : changes) {
    if (std::holds_alternative<std::monostate>(value)) {
      attributes_.erase(attribute);
    } else {
      attributes_.set(attribute, value);
    }
  }
  whileShowing([&] {
    for (const auto& [attribute, value] : changes) show(attribute);
  });
}

std::string Widget::text(Attribute attribute) const {
  const auto* const text = attributes_.get<std::string>(attribute);
  return text ? *text : "";
}

double Widget::number(Attribute attribute, double otherwise) const {
  const auto* const number = attributes_.get<double>(attribute);
  return number ? *number : otherwise;
}

bool Widget::isOn(Attribute attribute, bool otherwise) const {
  const auto* const isOn = attributes_.get<bool>(attribute);
  return isOn ? *isOn : otherwise;
}

std::string Widget::titleWithMnemonic() const {
  auto letter = text(Attribute::mnemonic);
  std::string marked;
  for (const char c : text(Attribute::title)) {
    if (!letter.empty() && g_ascii_toupper(c) == letter.front()) {
      marked += '_';
      letter.clear();
    }
    marked.append(c == '_' ? 2 : 1, c);
  }
  return marked;
}

void Widget::insert(Widget& child, Widget* after) {
  whileShowing([&] { place(child, after); });
}

void Widget::remove(Widget& child) {
  whileShowing([&] { take(child); });
}

void Widget::move(Widget& child, Widget* after) {
  whileShowing([&] {
    take(child);
    place(child, after);
  });
}

void Widget::show(Attribute attribute) {
  switch (attribute) {
    case Attribute::enabled:
      return gtk_widget_set_sensitive(root(), isOn(attribute, true));
    case Attribute::label:
      return nameControl(text(attribute));
    case Attribute::width:
    case Attribute::height:
    case Attribute::minimumHeight:
      return gtk_widget_set_size_request(
          root(), static_cast<int>(number(Attribute::width, -1)),
          static_cast<int>(std::max(number(Attribute::height, -1), number(Attribute::minimumHeight, -1))));
    default:
      return;
  }
}

void Widget::place(Widget&, Widget*) {
  throw view::WireError{"a node was put where none can stand"};
}

void Widget::take(Widget&) {}

void Widget::nameControl(const std::string& name) const {
  auto* const accessible = GTK_ACCESSIBLE(control());
  gtk_accessible_reset_relation(accessible, GTK_ACCESSIBLE_RELATION_LABELLED_BY);  // or it would be said twice
  gtk_accessible_update_property(accessible, GTK_ACCESSIBLE_PROPERTY_LABEL, name.c_str(), -1);
}

void Widget::leadTo(GtkWidget* control) const {
  const auto lead =
      +[](GtkWidget* target, gboolean isOneOfMany) { return gtk_widget_mnemonic_activate(target, isOneOfMany); };
  g_signal_connect_object(root(), "mnemonic-activate", G_CALLBACK(lead), control, G_CONNECT_SWAPPED);
}

void Widget::report(view::Input input) const {
  if (!isShowing_) report_(std::move(input));
}

// A swapped handler gets its own data first; whatever else the signal tells is left unread.
void Widget::connect(gpointer instance, const char* signal, std::function<void()> handler) {
  const auto call = +[](gpointer function) { (*static_cast<std::function<void()>*>(function))(); };
  const auto drop = +[](gpointer function, GClosure*) { delete static_cast<std::function<void()>*>(function); };
  const auto number = g_signal_connect_data(instance, signal, G_CALLBACK(call),
                                            std::make_unique<std::function<void()>>(std::move(handler)).release(), drop,
                                            G_CONNECT_SWAPPED);
  connections_.push_back({GObjectPtr<GObject>{G_OBJECT(g_object_ref(instance))}, number});
}

void Widget::whileShowing(const std::function<void()>& show) {
  const bool before = std::exchange(isShowing_, true);
  show();
  isShowing_ = before;
}

}  // namespace tavelle::gtk
