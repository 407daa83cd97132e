#pragma once

#include "platform/linux/gtk/Widget.h"
#include "view/KeyCaptureView.h"

#include <adwaita.h>

#include <memory>
#include <string>

namespace tavelle::gtk {

using WidgetPtr = std::unique_ptr<Widget>;

// What some widgets need of the window that they stand in.
struct Surroundings {
  AdwHeaderBar* headerBar;
  view::EventMonitors& monitors;
};

// One for each type of node.
WidgetPtr makeTabView(Widget::Report report, AdwHeaderBar* headerBar);
WidgetPtr makeTab();
WidgetPtr makeForm();
WidgetPtr makeSection();
WidgetPtr makeList(Widget::Report report);
WidgetPtr makeRow();
WidgetPtr makeStack();
WidgetPtr makeLabeledContent();
WidgetPtr makeText();
WidgetPtr makeWrappedText();  // a text of a maximum width, which is centred
WidgetPtr makeTextField(Widget::Report report);
WidgetPtr makeSecureField(Widget::Report report);
WidgetPtr makeTextEditor(Widget::Report report);
WidgetPtr makeButton(Widget::Report report);
WidgetPtr makePicker(Widget::Report report);
WidgetPtr makeOption();
WidgetPtr makeSlider(Widget::Report report);
WidgetPtr makeImage();
WidgetPtr makeSpacer();
WidgetPtr makeKeyCapture(Widget::Report report, view::EventMonitors& monitors);

// The icon for a system symbol, from the program's own: it looks the same on a desktop without any icon theme.
std::string iconFor(const std::string& symbol);

// Adds or removes a style class.
void setStyle(GtkWidget* widget, const char* styleClass, bool isOn);

}  // namespace tavelle::gtk
