#include "platform/linux/gtk/Widgets.h"

#include <utility>

namespace tavelle::gtk {
namespace {

using view::Attribute;

// A row with a title and one line of text to change. It looks like libadwaita's own, of which a screen reader is not
// told when it gets the keyboard.
class FieldWidget : public Widget {
 public:
  FieldWidget(GtkWidget* entry, Report report) : Widget(adw_preferences_row_new(), std::move(report)), entry_(entry) {
    gtk_widget_set_focusable(root(), false);
    gtk_widget_add_css_class(root(), "field");
    gtk_widget_add_css_class(entry_, "flat");
    gtk_editable_set_width_chars(editable(), 1);
    gtk_widget_set_hexpand(entry_, true);
    gtk_list_box_row_set_child(GTK_LIST_BOX_ROW(root()), layOut());
    focusWhereverPressed();
    connect(entry_, "changed", [this] { this->report(view::Edited{gtk_editable_get_text(editable())}); });
  }

 protected:
  GtkWidget* control() const override { return entry_; }

  void show(Attribute attribute) override {
    if (attribute == Attribute::value) return showText(text(attribute));
    if (attribute != Attribute::title && attribute != Attribute::mnemonic) return Widget::show(attribute);
    gtk_label_set_text_with_mnemonic(title_, titleWithMnemonic().c_str());
    nameControl(text(Attribute::title));
  }

 private:
  GtkEditable* editable() const { return GTK_EDITABLE(entry_); }

  // The title above the text, and a pencil beside them for as long as nobody types.
  GtkWidget* layOut() const {
    auto* const lines = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    gtk_widget_set_valign(lines, GTK_ALIGN_CENTER);
    gtk_label_set_xalign(title_, 0);
    gtk_label_set_ellipsize(title_, PANGO_ELLIPSIZE_END);
    gtk_label_set_mnemonic_widget(title_, entry_);
    gtk_widget_add_css_class(GTK_WIDGET(title_), "subtitle");
    gtk_box_append(GTK_BOX(lines), GTK_WIDGET(title_));
    gtk_box_append(GTK_BOX(lines), entry_);

    auto* const pencil = gtk_image_new_from_icon_name("document-edit-symbolic");
    gtk_widget_add_css_class(pencil, "edit-icon");
    gtk_accessible_update_state(GTK_ACCESSIBLE(pencil), GTK_ACCESSIBLE_STATE_HIDDEN, true, -1);
    auto* const header = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0);
    gtk_widget_add_css_class(header, "header");
    gtk_box_append(GTK_BOX(header), lines);
    gtk_box_append(GTK_BOX(header), pencil);
    return header;
  }

  void focusWhereverPressed() {
    auto* const press = gtk_gesture_click_new();
    connect(press, "pressed", [this] { gtk_widget_grab_focus(entry_); });
    gtk_widget_add_controller(root(), GTK_EVENT_CONTROLLER(press));
  }

  // What is there already is not touched, for its cursor and its input method.
  void showText(const std::string& value) {
    if (gtk_editable_get_text(editable()) == value) return;
    const int cursor = gtk_editable_get_position(editable());
    gtk_editable_set_text(editable(), value.c_str());
    gtk_editable_set_position(editable(), cursor);
  }

  GtkWidget* entry_;
  GtkLabel* title_ = GTK_LABEL(gtk_label_new(nullptr));
};

GtkWidget* passwordEntry() {
  auto* const entry = gtk_password_entry_new();
  gtk_password_entry_set_show_peek_icon(GTK_PASSWORD_ENTRY(entry), true);
  return entry;
}

}  // namespace

WidgetPtr makeTextField(Widget::Report report) {
  return std::make_unique<FieldWidget>(gtk_entry_new(), std::move(report));
}

WidgetPtr makeSecureField(Widget::Report report) {
  return std::make_unique<FieldWidget>(passwordEntry(), std::move(report));
}

}  // namespace tavelle::gtk
