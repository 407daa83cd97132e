#include "platform/linux/gtk/Widgets.h"

#include <algorithm>
#include <utility>

namespace tavelle::gtk {
namespace {

using view::Attribute;

// A row that shows the one of its options that is chosen, and all of them when it is pressed.
class PickerWidget : public Widget {
 public:
  explicit PickerWidget(Report report) : Widget(adw_combo_row_new(), std::move(report)), row_(ADW_COMBO_ROW(root())) {
    adw_preferences_row_set_use_markup(ADW_PREFERENCES_ROW(root()), false);
    adw_preferences_row_set_use_underline(ADW_PREFERENCES_ROW(root()), true);
    connect(row_, "notify::selected", [this] { chosen(); });
  }

 protected:
  void show(Attribute attribute) override {
    if (attribute == Attribute::value) return select();
    if (attribute != Attribute::title && attribute != Attribute::mnemonic) return Widget::show(attribute);
    adw_preferences_row_set_title(ADW_PREFERENCES_ROW(root()), titleWithMnemonic().c_str());
  }

  void place(Widget& option, Widget* after) override {
    const auto position = after ? std::find(options_.begin(), options_.end(), after) + 1 : options_.begin();
    options_.insert(position, &option);
    showOptions();
  }

  void take(Widget& option) override {
    std::erase(options_, &option);
    showOptions();
  }

 private:
  // HACK: a new list each time. The row of libadwaita 1.2 falls over a selection in a list that has just grown.
  void showOptions() {
    const GObjectPtr<GtkStringList> titles{gtk_string_list_new(nullptr)};
    for (const auto* option : options_) gtk_string_list_append(titles.get(), option->text(Attribute::title).c_str());
    adw_combo_row_set_model(row_, G_LIST_MODEL(titles.get()));
    select();
  }

  void select() {
    const auto found = std::find_if(
        options_.begin(), options_.end(),
        [tag = text(Attribute::value)](const Widget* option) { return option->text(Attribute::tag) == tag; });
    adw_combo_row_set_selected(
        row_, found == options_.end() ? GTK_INVALID_LIST_POSITION : static_cast<guint>(found - options_.begin()));
  }

  void chosen() {
    const auto selected = adw_combo_row_get_selected(row_);
    if (selected < options_.size()) report(view::Selected{options_[selected]->text(Attribute::tag)});
  }

  AdwComboRow* row_;
  std::vector<Widget*> options_;
};

// Known to its picker; it has no place of its own on the screen.
class OptionWidget : public Widget {
 public:
  OptionWidget() : Widget(adw_bin_new(), nullptr) {}
};

}  // namespace

WidgetPtr makePicker(Widget::Report report) {
  return std::make_unique<PickerWidget>(std::move(report));
}

WidgetPtr makeOption() {
  return std::make_unique<OptionWidget>();
}

}  // namespace tavelle::gtk
