#include "platform/linux/gtk/Widgets.h"

namespace tavelle::gtk {
namespace {

using view::Attribute;

// A group of rows. What is no row by itself is given one.
class SectionWidget : public Widget {
 public:
  SectionWidget() : Widget(adw_preferences_group_new(), nullptr) {
    gtk_widget_set_visible(root(), false);
    gtk_list_box_set_selection_mode(list_, GTK_SELECTION_NONE);
    gtk_widget_add_css_class(GTK_WIDGET(list_), "boxed-list");
    adw_preferences_group_add(ADW_PREFERENCES_GROUP(root()), GTK_WIDGET(list_));
  }

 protected:
  void show(Attribute attribute) override {
    if (attribute != Attribute::title) return Widget::show(attribute);
    const GPtr<> title{g_markup_escape_text(text(attribute).c_str(), -1)};
    adw_preferences_group_set_title(ADW_PREFERENCES_GROUP(root()), title.get());
    gtk_accessible_update_property(GTK_ACCESSIBLE(list_), GTK_ACCESSIBLE_PROPERTY_LABEL, text(attribute).c_str(), -1);
  }

  void place(Widget& child, Widget* after) override {
    auto* const row = GTK_IS_LIST_BOX_ROW(child.root()) ? child.root() : wrap(child.root());
    gtk_list_box_insert(list_, row, after ? gtk_list_box_row_get_index(rowOf(*after)) + 1 : 0);
    gtk_widget_set_visible(root(), true);
  }

  void take(Widget& child) override {
    auto* const row = rowOf(child);
    if (GTK_WIDGET(row) != child.root()) gtk_list_box_row_set_child(row, nullptr);
    gtk_list_box_remove(list_, GTK_WIDGET(row));
    gtk_widget_set_visible(root(), gtk_list_box_get_row_at_index(list_, 0) != nullptr);
  }

 private:
  static GtkWidget* wrap(GtkWidget* content) {
    gtk_widget_set_margin_start(content, 12);
    gtk_widget_set_margin_end(content, 12);
    gtk_widget_set_margin_top(content, 8);
    gtk_widget_set_margin_bottom(content, 8);
    auto* const row = adw_preferences_row_new();
    gtk_list_box_row_set_activatable(GTK_LIST_BOX_ROW(row), false);
    gtk_widget_set_focusable(row, false);
    gtk_list_box_row_set_child(GTK_LIST_BOX_ROW(row), content);
    return row;
  }

  static GtkListBoxRow* rowOf(const Widget& child) {
    auto* const self = child.root();
    return GTK_LIST_BOX_ROW(GTK_IS_LIST_BOX_ROW(self) ? self : gtk_widget_get_parent(self));
  }

  GtkListBox* list_ = GTK_LIST_BOX(gtk_list_box_new());
};

}  // namespace

WidgetPtr makeSection() {
  return std::make_unique<SectionWidget>();
}

}  // namespace tavelle::gtk
