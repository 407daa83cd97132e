#include "platform/linux/gtk/Widgets.h"

#include <utility>

namespace tavelle::gtk {
namespace {

using view::Attribute;

// A row with a title and one line of text to change.
class FieldWidget : public Widget {
 public:
  FieldWidget(GtkWidget* row, Report report) : Widget(row, std::move(report)), editable_(GTK_EDITABLE(row)) {
    adw_preferences_row_set_use_markup(ADW_PREFERENCES_ROW(row), false);
    connect(row, "changed", [this] { this->report(view::Edited{gtk_editable_get_text(editable_)}); });
  }

 protected:
  GtkWidget* control() const override { return GTK_WIDGET(gtk_editable_get_delegate(editable_)); }

  void show(Attribute attribute) override {
    if (attribute == Attribute::value) return showText(text(attribute));
    if (attribute != Attribute::title) return Widget::show(attribute);
    adw_preferences_row_set_title(ADW_PREFERENCES_ROW(root()), text(attribute).c_str());
    nameControl(text(attribute));
  }

 private:
  // What is there already is not touched, for its cursor and its input method.
  void showText(const std::string& value) {
    if (gtk_editable_get_text(editable_) == value) return;
    const int cursor = gtk_editable_get_position(editable_);
    gtk_editable_set_text(editable_, value.c_str());
    gtk_editable_set_position(editable_, cursor);
  }

  GtkEditable* editable_;
};

}  // namespace

WidgetPtr makeTextField(Widget::Report report) {
  return std::make_unique<FieldWidget>(adw_entry_row_new(), std::move(report));
}

WidgetPtr makeSecureField(Widget::Report report) {
  return std::make_unique<FieldWidget>(adw_password_entry_row_new(), std::move(report));
}

}  // namespace tavelle::gtk
