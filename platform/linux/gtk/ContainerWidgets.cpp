#include "platform/linux/gtk/KeyMonitors.h"
#include "platform/linux/gtk/ShortcutInhibitor.h"
#include "platform/linux/gtk/Widgets.h"
#include "view/KeyDownListener.h"

#include <utility>

namespace tavelle::gtk {
namespace {

using view::Attribute;

// A node with one child that fills it.
class BinWidget : public Widget {
 public:
  explicit BinWidget(Report report = nullptr) : Widget(adw_bin_new(), std::move(report)) {
    gtk_widget_set_hexpand(root(), true);
    gtk_widget_set_vexpand(root(), true);
  }

 protected:
  void place(Widget& child, Widget*) override { adw_bin_set_child(ADW_BIN(root()), child.root()); }
  void take(Widget&) override { adw_bin_set_child(ADW_BIN(root()), nullptr); }
};

// Has the keys of its window delivered to it as long as it is enabled.
class KeyCaptureWidget : public BinWidget {
 public:
  KeyCaptureWidget(Report report, view::EventMonitors& monitors) : BinWidget(std::move(report)), monitors_(monitors) {
    view_ = listener().makeView();
    view_->viewDidMoveToWindow(monitors_);
  }
  ~KeyCaptureWidget() override { view_->removeFromSuperview(monitors_); }

 protected:
  void show(Attribute attribute) override {
    if (attribute != Attribute::enabled) return;
    listener().updateView(*view_);
    inhibitor_.want(isOn(attribute, true));
  }

 private:
  view::KeyDownListener listener() {
    return {isOn(Attribute::enabled, true), [this](const view::KeyDown& event) {
              if (event.keyCode != KeyMonitors::noKeyCode) report(event);
            }};
  }

  view::EventMonitors& monitors_;
  std::shared_ptr<view::KeyCaptureView> view_;
  ShortcutInhibitor inhibitor_{root()};
};

class BoxWidget : public Widget {
 public:
  BoxWidget(GtkWidget* root, GtkBox* box) : Widget(root, nullptr), box_(box) {}

 protected:
  GtkBox* box() const { return box_; }
  void place(Widget& child, Widget* after) override {
    gtk_box_insert_child_after(box_, child.root(), after ? after->root() : nullptr);
  }
  void take(Widget& child) override { gtk_box_remove(box_, child.root()); }

 private:
  GtkBox* box_;
};

class StackWidget : public BoxWidget {
 public:
  explicit StackWidget(GtkWidget* box = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 12)) : BoxWidget(box, GTK_BOX(box)) {}

 protected:
  void show(Attribute attribute) override {
    switch (attribute) {
      case Attribute::axis:
        return gtk_orientable_set_orientation(GTK_ORIENTABLE(root()), axis());
      case Attribute::spacing:
        return gtk_box_set_spacing(box(), static_cast<int>(number(attribute, 0)));
      case Attribute::fills:
        gtk_widget_set_hexpand(root(), isOn(attribute));
        return gtk_widget_set_vexpand(root(), isOn(attribute));
      default:
        return Widget::show(attribute);
    }
  }

  // What does not take all the room itself stands in the middle.
  void place(Widget& child, Widget* after) override {
    BoxWidget::place(child, after);
    if (axis() == GTK_ORIENTATION_VERTICAL && !gtk_widget_get_hexpand(child.root())) {
      gtk_widget_set_halign(child.root(), GTK_ALIGN_CENTER);
    }
  }

 private:
  GtkOrientation axis() const {
    return text(Attribute::axis) == "vertical" ? GTK_ORIENTATION_VERTICAL : GTK_ORIENTATION_HORIZONTAL;
  }
};

// Scrolls where its sections need more room than there is.
class FormWidget : public BoxWidget {
 public:
  explicit FormWidget(GtkWidget* box = gtk_box_new(GTK_ORIENTATION_VERTICAL, 18))
      : BoxWidget(gtk_scrolled_window_new(), GTK_BOX(box)) {
    gtk_widget_set_hexpand(root(), true);
    gtk_widget_set_vexpand(root(), true);
    gtk_widget_set_margin_start(box, 18);
    gtk_widget_set_margin_end(box, 18);
    gtk_widget_set_margin_top(box, 18);
    gtk_widget_set_margin_bottom(box, 24);
    // External: the width is the window's to say, and not that of the longest text.
    auto* const scrolled = GTK_SCROLLED_WINDOW(root());
    gtk_scrolled_window_set_policy(scrolled, GTK_POLICY_EXTERNAL, GTK_POLICY_AUTOMATIC);
    gtk_scrolled_window_set_child(scrolled, box);
  }
};

class LabeledContentWidget : public BoxWidget {
 public:
  explicit LabeledContentWidget(GtkWidget* box = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 12))
      : BoxWidget(adw_action_row_new(), GTK_BOX(box)) {
    adw_preferences_row_set_use_markup(ADW_PREFERENCES_ROW(root()), false);
    adw_preferences_row_set_use_underline(ADW_PREFERENCES_ROW(root()), true);
    gtk_list_box_row_set_activatable(GTK_LIST_BOX_ROW(root()), false);
    gtk_widget_set_focusable(root(), false);
    adw_action_row_add_suffix(ADW_ACTION_ROW(root()), box);
  }

 protected:
  void show(Attribute attribute) override {
    if (attribute != Attribute::title && attribute != Attribute::mnemonic) return Widget::show(attribute);
    adw_preferences_row_set_title(ADW_PREFERENCES_ROW(root()), titleWithMnemonic().c_str());
  }

  // What is said of a control in its row's title is said to a screen reader as well.
  void place(Widget& child, Widget* after) override {
    BoxWidget::place(child, after);
    gtk_accessible_update_property(GTK_ACCESSIBLE(child.root()), GTK_ACCESSIBLE_PROPERTY_DESCRIPTION,
                                   text(Attribute::title).c_str(), -1);
    if (isSaid(Attribute::mnemonic)) leadTo(child.root());
  }
};

}  // namespace

WidgetPtr makeTab() {
  return std::make_unique<BinWidget>();
}

WidgetPtr makeKeyCapture(Widget::Report report, view::EventMonitors& monitors) {
  return std::make_unique<KeyCaptureWidget>(std::move(report), monitors);
}

WidgetPtr makeStack() {
  return std::make_unique<StackWidget>();
}

WidgetPtr makeForm() {
  return std::make_unique<FormWidget>();
}

WidgetPtr makeLabeledContent() {
  return std::make_unique<LabeledContentWidget>();
}

}  // namespace tavelle::gtk
