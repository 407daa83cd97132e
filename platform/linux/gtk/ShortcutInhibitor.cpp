#include "platform/linux/gtk/ShortcutInhibitor.h"

#include <gdk/x11/gdkx.h>

#include <array>

namespace tavelle::gtk {
namespace {

// Null for what is none of the events that are told in this way.
const XIEvent* inputEventIn(const XEvent& event) {
  return event.type == GenericEvent ? static_cast<const XIEvent*>(event.xcookie.data) : nullptr;
}

bool hasPointer(GdkSurface* window) {
  auto* const seat = gdk_display_get_default_seat(gdk_surface_get_display(window));
  double x = 0;
  double y = 0;
  gdk_surface_get_device_position(window, gdk_seat_get_pointer(seat), &x, &y, nullptr);
  return x >= 0 && y >= 0 && x < gdk_surface_get_width(window) && y < gdk_surface_get_height(window);
}

}  // namespace

ShortcutInhibitor::ShortcutInhibitor(GtkWidget* widget) : widget_(widget) {
  constexpr const char* changes[] = {"map", "unmap", "state-flags-changed"};
  for (const auto* const change : changes) g_signal_connect_swapped(widget, change, G_CALLBACK(onChanged), this);
  auto* const display = gtk_widget_get_display(widget);
  if (GDK_IS_X11_DISPLAY(display)) g_signal_connect(display, "xevent", G_CALLBACK(onXEvent), this);
}

ShortcutInhibitor::~ShortcutInhibitor() {
  want(false);
  g_signal_handlers_disconnect_by_data(gtk_widget_get_display(widget_), this);
  g_signal_handlers_disconnect_by_data(widget_, this);
}

void ShortcutInhibitor::want(bool isWanted) {
  isWanted_ = isWanted;
  auto* const surface = window();
  isPointerElsewhere_ = isWanted && surface && !hasPointer(surface);
  wasClickElsewhere_ = false;
  watchClicks();
  follow();
}

// Raw events tell of the clicks on other programs' windows as well.
void ShortcutInhibitor::watchClicks() const {
  auto* const display = gtk_widget_get_display(widget_);
  if (!GDK_IS_X11_DISPLAY(display)) return;
  std::array<unsigned char, XIMaskLen(XI_LASTEVENT)> bits{};
  if (isWanted_) XISetMask(bits.data(), XI_RawButtonPress);
  XIEventMask mask{XIAllMasterDevices, static_cast<int>(bits.size()), bits.data()};
  auto* const xdisplay = gdk_x11_display_get_xdisplay(display);
  XISelectEvents(xdisplay, DefaultRootWindow(xdisplay), &mask, 1);
}

void ShortcutInhibitor::onChanged(gpointer self) {
  static_cast<const ShortcutInhibitor*>(self)->follow();
}

// HACK: on X11 the keys come by a grab of the keyboard, and while that lasts GDK does not tell that the window has lost
// it: it would stay grabbed for as long as somebody types elsewhere.
gboolean ShortcutInhibitor::onXEvent(GdkDisplay*, gpointer event, gpointer self) {
  const auto* const input = inputEventIn(*static_cast<const XEvent*>(event));
  if (input) static_cast<ShortcutInhibitor*>(self)->hear(*input);
  return false;
}

void ShortcutInhibitor::hear(const XIEvent& event) {
  auto* const surface = window();
  if (!surface) return;
  switch (event.evtype) {
    case XI_RawButtonPress:
      wasClickElsewhere_ = isPointerElsewhere_;
      break;
    case XI_Enter:
    case XI_Leave:
      hearPointer(reinterpret_cast<const XIEnterEvent&>(event));
      break;
    case XI_FocusIn:
    case XI_FocusOut:
      hearKeyboard(reinterpret_cast<const XIFocusInEvent&>(event));
      break;
    default:
      return;
  }
  follow();
}

void ShortcutInhibitor::hearPointer(const XIEnterEvent& event) {
  if (event.event != gdk_x11_surface_get_xid(window()) || event.detail == XINotifyInferior) return;
  isPointerElsewhere_ = event.evtype == XI_Leave;
  if (!isPointerElsewhere_) wasClickElsewhere_ = false;
}

// What a grab does to the keyboard is not meant, our own one's least, nor that it goes where the pointer is.
void ShortcutInhibitor::hearKeyboard(const XIFocusInEvent& event) {
  const bool isOurs = event.event == gdk_x11_surface_get_xid(window());
  const bool isMeant = event.mode == XINotifyNormal || event.mode == XINotifyWhileGrabbed;
  if (!isOurs || !isMeant || event.detail == XINotifyInferior || event.detail >= XINotifyPointer) return;
  hasKeyboardGone_ = event.evtype == XI_FocusOut;
  if (!hasKeyboardGone_) wasClickElsewhere_ = false;
}

GdkSurface* ShortcutInhibitor::window() const {
  auto* const native = gtk_widget_get_native(widget_);
  auto* const surface = native ? gtk_native_get_surface(native) : nullptr;
  return surface && GDK_IS_TOPLEVEL(surface) ? surface : nullptr;
}

bool ShortcutInhibitor::isInFront() const {
  const bool isActive = (gtk_widget_get_state_flags(widget_) & GTK_STATE_FLAG_BACKDROP) == 0;
  return isActive && gtk_widget_get_mapped(widget_) && !hasKeyboardGone_ && !wasClickElsewhere_;
}

void ShortcutInhibitor::follow() const {
  auto* const surface = window();
  if (!surface) return;
  if (isWanted_ && isInFront()) {
    gdk_toplevel_inhibit_system_shortcuts(GDK_TOPLEVEL(surface), nullptr);
  } else {
    gdk_toplevel_restore_system_shortcuts(GDK_TOPLEVEL(surface));
  }
}

}  // namespace tavelle::gtk
