#include "platform/linux/gtk/KeyMonitors.h"

#include "platform/linux/VirtualKeyCodes.h"

#include <optional>
#include <utility>

namespace tavelle::gtk {
namespace {

// NSEventModifierFlags.
std::uint32_t modifierFlags(GdkModifierType state) {
  constexpr std::pair<unsigned, std::uint32_t> flags[] = {
      {GDK_LOCK_MASK, 1U << 16}, {GDK_SHIFT_MASK, 1U << 17}, {GDK_CONTROL_MASK, 1U << 18},
      {GDK_ALT_MASK, 1U << 19},  {GDK_SUPER_MASK, 1U << 20},
  };
  std::uint32_t result = 0;
  for (const auto& [mask, flag] : flags) {
    if ((static_cast<unsigned>(state) & mask) != 0) result |= flag;
  }
  return result;
}

}  // namespace

KeyMonitors::KeyMonitors(GtkWidget* window) {
  auto* const controller = gtk_event_controller_key_new();
  gtk_event_controller_set_propagation_phase(controller, GTK_PHASE_CAPTURE);
  g_signal_connect(controller, "key-pressed", G_CALLBACK(onKeyPressed), this);
  gtk_widget_add_controller(window, controller);
}

KeyMonitors::Token KeyMonitors::addLocalMonitorForEventsMatchingMask(std::uint64_t mask, Block block) {
  monitors_.emplace(++lastToken_, Monitor{mask, std::move(block)});
  return lastToken_;
}

void KeyMonitors::removeMonitor(Token token) {
  monitors_.erase(token);
}

// A modifier alone is a change of the flags, and no key down.
gboolean KeyMonitors::onKeyPressed(GtkEventControllerKey* controller, guint, guint keycode, GdkModifierType state,
                                   gpointer self) {
  auto* const event = gtk_event_controller_get_current_event(GTK_EVENT_CONTROLLER(controller));
  if (gdk_key_event_is_modifier(event)) return false;
  return static_cast<KeyMonitors*>(self)->isSwallowed(
      {virtualKeyCodeOf(keycode).value_or(noKeyCode), modifierFlags(state)});
}

bool KeyMonitors::isSwallowed(const view::KeyDown& event) const {
  std::optional<view::KeyDown> left = event;
  for (const auto& [token, monitor] : monitors_) {
    if (left && (monitor.mask & view::eventMaskKeyDown) != 0) left = monitor.block(*left);
  }
  return !left;
}

}  // namespace tavelle::gtk
