#include "platform/linux/gtk/Widgets.h"

#include <map>

namespace tavelle::gtk {
namespace {

using view::Attribute;

class TextWidget : public Widget {
 public:
  TextWidget(GtkWidget* root, GtkWidget* label) : Widget(root, nullptr), label_(GTK_LABEL(label)) {
    gtk_label_set_wrap(label_, true);
    gtk_label_set_wrap_mode(label_, PANGO_WRAP_WORD_CHAR);
    gtk_label_set_natural_wrap_mode(label_, GTK_NATURAL_WRAP_NONE);  // on one line where there is room for it
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
        setStyle(GTK_WIDGET(label_), "caption", text(attribute) == "caption");
        return setStyle(GTK_WIDGET(label_), "title-1", text(attribute) == "title");
      case Attribute::bold:
        return setStyle(GTK_WIDGET(label_), "heading", isOn(attribute) && text(Attribute::font) != "title");
      case Attribute::monospacedDigits:
        return setStyle(GTK_WIDGET(label_), "numeric", isOn(attribute));
      case Attribute::maximumWidth:
        return adw_clamp_set_maximum_size(ADW_CLAMP(root()), static_cast<int>(number(attribute, 0)));
      default:
        return Widget::show(attribute);
    }
  }

 private:
  void showColor(const std::string& color) {
    setStyle(GTK_WIDGET(label_), "dim-label", color == "secondary");
    setStyle(GTK_WIDGET(label_), "success", color == "green");
    setStyle(GTK_WIDGET(label_), "error", color == "red");
    setStyle(GTK_WIDGET(label_), "orange", color == "orange");
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
  auto* const label = gtk_label_new(nullptr);
  return std::make_unique<TextWidget>(label, label);
}

WidgetPtr makeWrappedText() {
  auto* const label = gtk_label_new(nullptr);
  auto* const clamp = adw_clamp_new();
  gtk_widget_set_hexpand(clamp, true);
  adw_clamp_set_child(ADW_CLAMP(clamp), label);
  auto text = std::make_unique<TextWidget>(clamp, label);
  gtk_label_set_justify(GTK_LABEL(label), GTK_JUSTIFY_CENTER);
  gtk_label_set_xalign(GTK_LABEL(label), 0.5);
  return text;
}

WidgetPtr makeImage() {
  return std::make_unique<ImageWidget>();
}

WidgetPtr makeSpacer() {
  return std::make_unique<SpacerWidget>();
}

std::string iconFor(const std::string& symbol) {
  static const std::map<std::string, std::string> names{
      {"gear", "gear"}, {"cloud", "cloud"}, {"info.circle", "info"}, {"plus", "plus"}, {"minus", "minus"}};
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
