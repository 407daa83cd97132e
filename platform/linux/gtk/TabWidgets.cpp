#include "platform/linux/gtk/Widgets.h"

#include <utility>

namespace tavelle::gtk {
namespace {

using view::Attribute;

// Its switcher stands in the header bar of the window, in place of the title.
class TabViewWidget : public Widget {
 public:
  TabViewWidget(Report report, AdwHeaderBar* headerBar)
      : Widget(adw_view_stack_new(), std::move(report)), stack_(ADW_VIEW_STACK(root())), headerBar_(headerBar) {
    gtk_widget_set_hexpand(root(), true);
    gtk_widget_set_vexpand(root(), true);
    auto* const switcher = ADW_VIEW_SWITCHER(adw_view_switcher_new());
    adw_view_switcher_set_policy(switcher, ADW_VIEW_SWITCHER_POLICY_WIDE);
    adw_view_switcher_set_stack(switcher, stack_);
    adw_header_bar_set_title_widget(headerBar_, GTK_WIDGET(switcher));
    connect(stack_, "notify::visible-child-name", [this] { chosen(); });
    addShortcut(GDK_KEY_Page_Up, -1);
    addShortcut(GDK_KEY_Page_Down, 1);
  }
  ~TabViewWidget() override { adw_header_bar_set_title_widget(headerBar_, nullptr); }

 protected:
  void show(Attribute attribute) override {
    if (attribute != Attribute::value) return Widget::show(attribute);
    const auto tag = text(attribute);
    if (adw_view_stack_get_child_by_name(stack_, tag.c_str()))
      adw_view_stack_set_visible_child_name(stack_, tag.c_str());
  }

  // At the end: tabs do not change their places.
  void place(Widget& tab, Widget*) override {
    auto* const page = adw_view_stack_add_titled(stack_, tab.root(), tab.text(Attribute::tag).c_str(),
                                                 tab.titleWithMnemonic().c_str());
    adw_view_stack_page_set_use_underline(page, true);
    adw_view_stack_page_set_icon_name(page, iconFor(tab.text(Attribute::symbol)).c_str());
    show(Attribute::value);
  }

  void take(Widget& tab) override { adw_view_stack_remove(stack_, tab.root()); }

 private:
  void chosen() {
    const char* const name = adw_view_stack_get_visible_child_name(stack_);
    report(view::Selected{name ? name : ""});
  }

  // Control and this key go `distance` tabs on, from wherever the keyboard is.
  void addShortcut(guint key, int distance) {
    auto* const shortcut = gtk_shortcut_new(gtk_keyval_trigger_new(key, GDK_CONTROL_MASK),
                                            gtk_callback_action_new(
                                                [](GtkWidget* stack, GVariant* by, gpointer) -> gboolean {
                                                  goOn(ADW_VIEW_STACK(stack), g_variant_get_int32(by));
                                                  return true;
                                                },
                                                nullptr, nullptr));
    gtk_shortcut_set_arguments(shortcut, g_variant_new_int32(distance));
    auto* const controller = gtk_shortcut_controller_new();
    gtk_shortcut_controller_set_scope(GTK_SHORTCUT_CONTROLLER(controller), GTK_SHORTCUT_SCOPE_GLOBAL);
    gtk_shortcut_controller_add_shortcut(GTK_SHORTCUT_CONTROLLER(controller), shortcut);
    gtk_widget_add_controller(root(), controller);
  }

  static void goOn(AdwViewStack* stack, int distance) {
    const GObjectPtr<GtkSelectionModel> pages{adw_view_stack_get_pages(stack)};
    const auto count = g_list_model_get_n_items(G_LIST_MODEL(pages.get()));
    for (guint at = 0; at < count; ++at) {
      if (!gtk_selection_model_is_selected(pages.get(), at)) continue;
      gtk_selection_model_select_item(pages.get(), (at + count + static_cast<guint>(distance)) % count, true);
      return;
    }
  }

  AdwViewStack* stack_;
  AdwHeaderBar* headerBar_;
};

}  // namespace

WidgetPtr makeTabView(Widget::Report report, AdwHeaderBar* headerBar) {
  return std::make_unique<TabViewWidget>(std::move(report), headerBar);
}

}  // namespace tavelle::gtk
