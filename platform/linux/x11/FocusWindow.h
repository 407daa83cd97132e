#pragma once

#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/Terminals.h"

#include <xcb/xcb.h>

namespace tavelle::x11 {

// The window that gets the keys when the server says that `focus` has the keyboard focus: itself, or, where the keys
// follow the pointer, the innermost window under it. XCB_WINDOW_NONE where no window gets them.
xcb_window_t windowOfKeys(Connection& connection, xcb_window_t focus);

// How the application of `window` wants the editing keys: it is known by the WM_CLASS of the window or of the nearest
// one around it that has any.
EditingKeys editingKeysOf(Connection& connection, xcb_window_t window);

}  // namespace tavelle::x11
