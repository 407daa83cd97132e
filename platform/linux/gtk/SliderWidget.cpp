#include "platform/linux/gtk/Widgets.h"

#include <cmath>
#include <utility>

namespace tavelle::gtk {
namespace {

using view::Attribute;

class SliderWidget : public Widget {
 public:
  explicit SliderWidget(Report report) : Widget(gtk_scale_new(GTK_ORIENTATION_HORIZONTAL, nullptr), std::move(report)) {
    gtk_scale_set_draw_value(GTK_SCALE(root()), false);
    gtk_widget_set_hexpand(root(), true);
    connect(root(), "value-changed", [this] { this->report(view::Adjusted{gtk_range_get_value(range())}); });
  }

 protected:
  void show(Attribute attribute) override {
    switch (attribute) {
      case Attribute::minimum:
      case Attribute::maximum:
        return showRange();
      case Attribute::step:
        return showStep(number(attribute, 1));
      case Attribute::value:
        return gtk_range_set_value(range(), number(attribute, 0));
      default:
        return Widget::show(attribute);
    }
  }

 private:
  GtkRange* range() const { return GTK_RANGE(root()); }

  // The value again: it was brought into the range that there was before.
  void showRange() {
    gtk_range_set_range(range(), number(Attribute::minimum, 0), number(Attribute::maximum, 1));
    gtk_range_set_value(range(), number(Attribute::value, 0));
  }

  void showStep(double step) {
    constexpr int stepsOfAPage = 5;
    gtk_range_set_increments(range(), step, step * stepsOfAPage);
    gtk_range_set_round_digits(range(), static_cast<int>(std::ceil(-std::log10(step))));
  }
};

}  // namespace

WidgetPtr makeSlider(Widget::Report report) {
  return std::make_unique<SliderWidget>(std::move(report));
}

}  // namespace tavelle::gtk
