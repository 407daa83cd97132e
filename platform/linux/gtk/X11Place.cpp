#include "platform/linux/gtk/X11Place.h"

#include <gdk/x11/gdkx.h>

namespace tavelle::gtk {
namespace {

struct X11Window {
  GdkSurface* surface;
  Display* display;
  Window id;
};

std::optional<X11Window> x11WindowOf(GtkWindow* window) {
  auto* const surface = gtk_native_get_surface(GTK_NATIVE(window));
  if (!surface || !GDK_IS_X11_SURFACE(surface)) return std::nullopt;
  return X11Window{surface, gdk_x11_display_get_xdisplay(gdk_surface_get_display(surface)),
                   gdk_x11_surface_get_xid(surface)};
}

WindowPlace middleOfScreen(GdkSurface* surface) {
  auto* const monitor = gdk_display_get_monitor_at_surface(gdk_surface_get_display(surface), surface);
  GdkRectangle screen{};
  if (monitor) gdk_monitor_get_geometry(monitor, &screen);
  const double scale = gdk_surface_get_scale_factor(surface);
  return {(screen.x + (screen.width - gdk_surface_get_width(surface)) / 2.0) * scale,
          (screen.y + (screen.height - gdk_surface_get_height(surface)) / 2.0) * scale};
}

}  // namespace

std::optional<WindowPlace> placeOf(GtkWindow* window) {
  const auto x11 = x11WindowOf(window);
  if (!x11) return std::nullopt;
  int x = 0;
  int y = 0;
  Window child = 0;
  XTranslateCoordinates(x11->display, x11->id, DefaultRootWindow(x11->display), 0, 0, &x, &y, &child);
  return WindowPlace{static_cast<double>(x), static_cast<double>(y)};
}

void moveTo(GtkWindow* window, const std::optional<WindowPlace>& place) {
  const auto x11 = x11WindowOf(window);
  if (!x11) return;
  const auto target = place ? *place : middleOfScreen(x11->surface);
  XMoveWindow(x11->display, x11->id, static_cast<int>(target.x), static_cast<int>(target.y));
}

}  // namespace tavelle::gtk
