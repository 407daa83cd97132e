#include "platform/linux/gtk/Widgets.h"

#include <utility>

namespace tavelle::gtk {
namespace {

using view::Attribute;

class ButtonWidget : public Widget {
 public:
  explicit ButtonWidget(Report report) : Widget(gtk_button_new(), std::move(report)) {
    gtk_widget_set_halign(root(), GTK_ALIGN_START);
    gtk_widget_set_valign(root(), GTK_ALIGN_CENTER);
    gtk_button_set_use_underline(GTK_BUTTON(root()), true);
    connect(root(), "clicked", [this] { this->report(view::Pressed{}); });
  }

 protected:
  void show(Attribute attribute) override {
    switch (attribute) {
      case Attribute::title:
      case Attribute::mnemonic:
      case Attribute::busy:
        return showTitle();
      case Attribute::symbol:
        return gtk_button_set_icon_name(GTK_BUTTON(root()), iconFor(text(attribute)).c_str());
      case Attribute::label:
        gtk_widget_set_tooltip_text(root(), text(attribute).c_str());
        return Widget::show(attribute);
      case Attribute::small:
        return setStyle(root(), "small-control", isOn(attribute));
      default:
        return Widget::show(attribute);
    }
  }

 private:
  void showTitle() {
    const auto title = titleWithMnemonic();
    if (title.empty()) return;
    if (isOn(Attribute::busy)) {
      auto* const box = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 8);
      auto* const spinner = gtk_spinner_new();
      gtk_spinner_start(GTK_SPINNER(spinner));
      gtk_box_append(GTK_BOX(box), spinner);
      gtk_box_append(GTK_BOX(box), gtk_label_new_with_mnemonic(title.c_str()));
      gtk_button_set_child(GTK_BUTTON(root()), box);
    } else {
      gtk_button_set_label(GTK_BUTTON(root()), title.c_str());
    }
    nameControl(text(Attribute::title));
  }
};

}  // namespace

WidgetPtr makeButton(Widget::Report report) {
  return std::make_unique<ButtonWidget>(std::move(report));
}

}  // namespace tavelle::gtk
