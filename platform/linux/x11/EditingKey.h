#pragma once

#include "observation/Subject.h"

#include <xcb/xcb.h>

namespace tavelle::x11 {

enum class EditingKey { copy, paste };

// A copy or paste key stroke that was just sent to the window with the keyboard focus. The keys tell the pasteboard,
// which has to know whose answer to wait for after a copy, and whom it owes the pasted text.
struct PostedEditingKey {
  EditingKey key;
  xcb_window_t focus;  // XCB_WINDOW_NONE where no window has it of its own
};

using PostedEditingKeys = Subject<PostedEditingKey>;

}  // namespace tavelle::x11
