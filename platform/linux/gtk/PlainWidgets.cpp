#include "platform/linux/gtk/Widgets.h"

#include <map>

namespace tavelle::gtk {
namespace {

using view::Attribute;

class TextWidget : public Widget {
 public:
  TextWidget() : Widget(gtk_label_new(nullptr), nullptr), label_(GTK_LABEL(root())) {
    gtk_label_set_wrap(label_, true);
    gtk_label_set_wrap_mode(label_, PANGO_WRAP_WORD_CHAR);
    gtk_label_set_xalign(label_, 0);
  }

 protected:
  void show(Attribute attribute) override {
    switch (attribute) {
      case Attribute::text:
        return gtk_label_set_text(label_, text(attribute).c_str());
      case Attribute::color:
        return showColor(text(attribute));
      case Attribute::font:
        setStyle(root(), "caption", text(attribute) == "caption");
        return setStyle(root(), "title-1", text(attribute) == "title");
      case Attribute::bold:
        return setStyle(root(), "heading", isOn(attribute) && text(Attribute::font) != "title");
      case Attribute::monospacedDigits:
        return setStyle(root(), "numeric", isOn(attribute));
      case Attribute::maximumWidth:
        return wrapAt(number(attribute, -1));
      default:
        return Widget::show(attribute);
    }
  }

 private:
  void showColor(const std::string& color) {
    setStyle(root(), "dim-label", color == "secondary");
    setStyle(root(), "success", color == "green");
    setStyle(root(), "error", color == "red");
    setStyle(root(), "warning", color == "orange");
  }

  // A label takes as little room as its text needs; asked for the width, it has its lines in the middle of it.
  void wrapAt(double points) {
    gtk_label_set_justify(label_, GTK_JUSTIFY_CENTER);
    gtk_label_set_xalign(label_, 0.5);
    gtk_label_set_max_width_chars(label_, 1);
    gtk_widget_set_size_request(root(), static_cast<int>(points), -1);
  }

  GtkLabel* label_;
};

class ImageWidget : public Widget {
 public:
  ImageWidget() : Widget(gtk_image_new(), nullptr) {
    gtk_accessible_update_state(GTK_ACCESSIBLE(root()), GTK_ACCESSIBLE_STATE_HIDDEN, true, -1);
  }

 protected:
  void show(Attribute attribute) override {
    auto* const image = GTK_IMAGE(root());
    if (attribute == Attribute::image) gtk_image_set_from_icon_name(image, text(attribute).c_str());
    if (attribute == Attribute::width) gtk_image_set_pixel_size(image, static_cast<int>(number(attribute, -1)));
  }
};

class SpacerWidget : public Widget {
 public:
  SpacerWidget() : Widget(gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0), nullptr) {
    gtk_widget_set_hexpand(root(), true);
    gtk_widget_set_vexpand(root(), true);
  }
};

}  // namespace

WidgetPtr makeText() {
  return std::make_unique<TextWidget>();
}

WidgetPtr makeImage() {
  return std::make_unique<ImageWidget>();
}

WidgetPtr makeSpacer() {
  return std::make_unique<SpacerWidget>();
}

std::string iconFor(const std::string& symbol) {
  static const std::map<std::string, std::string> names{{"gear", "gear"},
                                                        {"cloud", "cloud"},
                                                        {"info.circle", "info"},
                                                        {"plus", "plus"},
                                                        {"minus", "minus"}};
  const auto found = names.find(symbol);
  return found == names.end() ? "image-missing" : "tavelle-" + found->second + "-symbolic";
}

void setStyle(GtkWidget* widget, const char* styleClass, bool isOn) {
  if (isOn) {
    gtk_widget_add_css_class(widget, styleClass);
  } else {
    gtk_widget_remove_css_class(widget, styleClass);
  }
}

}  // namespace tavelle::gtk
