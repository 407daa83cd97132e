#pragma once

#include "view/KeyCaptureView.h"

#include <gtk/gtk.h>

#include <cstdint>
#include <map>

namespace tavelle::gtk {

// The key presses of one window, before any of its widgets, its shortcuts and the input method.
class KeyMonitors : public view::EventMonitors {
 public:
  // Of a key that has no virtual key code.
  static constexpr std::uint16_t noKeyCode = 0xFFFF;

  explicit KeyMonitors(GtkWidget* window);

  Token addLocalMonitorForEventsMatchingMask(std::uint64_t mask, Block block) override;
  void removeMonitor(Token token) override;

 private:
  struct Monitor {
    std::uint64_t mask;
    Block block;
  };

  static gboolean onKeyPressed(GtkEventControllerKey* controller, guint keyval, guint keycode, GdkModifierType state,
                               gpointer self);
  bool isSwallowed(const view::KeyDown& event) const;

  std::map<Token, Monitor> monitors_;
  Token lastToken_ = 0;
};

}  // namespace tavelle::gtk
