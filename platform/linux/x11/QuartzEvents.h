#pragma once

#include "platform/QuartzEvents.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/EditingKey.h"
#include "platform/linux/x11/HeldKeys.h"
#include "platform/linux/x11/Keyboard.h"
#include "platform/linux/x11/LentKeys.h"

#include <xcb/xcb.h>

#include <optional>

namespace tavelle::x11 {

// Synthetic keys by the XTEST extension. Main thread only.
//
// Command with C or V is the desktop's own editing key stroke. It is sent whole when its key is let go: between its
// parts nothing of the person's may come. Any other key goes down and up as told, with Control for Command.
class X11QuartzEvents : public QuartzEvents {
 public:
  X11QuartzEvents(Connection& connection, Keyboard& keyboard, HeldKeys& heldKeys, PostedEditingKeys& posted);

  std::unique_ptr<EventSource> createEventSource(EventSourceStateID state) override;
  std::unique_ptr<KeyboardEvent> createKeyboardEvent(EventSource* source, std::uint16_t keyCode, bool keyDown) override;
  void setFlags(KeyboardEvent& event, std::uint64_t flags) override;
  void post(EventTapLocation tap, const KeyboardEvent& event) override;

  // Sends a stroke once more, unless another window may have the keyboard by now.
  void repeat(const PostedEditingKey& posted);

 private:
  struct Event;

  void postEditingKey(EditingKey key, std::optional<xcb_window_t> onlyTo = std::nullopt);
  std::optional<xcb_keycode_t> keyFor(char letter, std::uint8_t group);
  void postPlainKey(const Event& event);

  Connection& connection_;
  Keyboard& keyboard_;
  HeldKeys& heldKeys_;
  PostedEditingKeys& posted_;
  LentKeys lentKeys_;
  std::optional<EditingKey> pressed_;  // whose key went down and was not let go yet
};

}  // namespace tavelle::x11
