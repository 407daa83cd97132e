#pragma once

#include "platform/linux/WindowLine.h"

#include <gtk/gtk.h>

#include <optional>

namespace tavelle::gtk {

// Where a window that is shown stands. Only X11 tells; elsewhere its place is the desktop's own business, which is none
// here.
std::optional<WindowPlace> placeOf(GtkWindow* window);

// Puts it there, or in the middle of its screen.
void moveTo(GtkWindow* window, const std::optional<WindowPlace>& place);

}  // namespace tavelle::gtk
