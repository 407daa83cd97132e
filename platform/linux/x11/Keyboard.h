#pragma once

#include "observation/Subject.h"
#include "observation/Subscription.h"
#include "platform/linux/GSourcePtr.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/InputDevices.h"
#include "platform/linux/x11/KeyboardLayout.h"
#include "platform/linux/x11/ModifierMap.h"

#include <xcb/xcb.h>

#include <cstdint>

namespace tavelle::x11 {

// The keyboard as the server describes it now: its devices, its modifiers, its layouts. What is asked once is kept
// until the server tells of a change. Main thread only.
class Keyboard {
 public:
  // The server must have the XKB and XInput extensions, as every X.Org server has; without them there is nothing to
  // describe and no hotkey.
  explicit Keyboard(Connection& connection);

  const ModifierMap& modifiers() const { return modifiers_; }
  const KeyboardLayout& layout();
  const InputDevices& devices() const { return devices_; }

  // This program has given a letter to a spare key: true before the server tells so.
  void setKey(char letter, xcb_keycode_t key);
  // This program has taken a letter back.
  void forgetLayout();

  // The server's modifiers have new places: sent after modifiers() gives the new ones, never for a mere change of
  // letters.
  Subject<>& modifiersChanged() { return modifiersChanged_; }

 private:
  void selectEvents();
  void received(const xcb_generic_event_t& event);
  void refreshSoon();
  void refresh();

  Connection& connection_;
  InputDevices devices_;
  ModifierMap modifiers_;
  KeyboardLayout layout_;
  bool areDevicesStale_ = false;
  bool areModifiersStale_ = false;
  bool isLayoutStale_ = true;
  std::uint8_t xkbEvent_ = 0;
  std::uint8_t inputOpcode_ = 0;
  Subject<> modifiersChanged_;
  GSourcePtr refreshSource_;
  Subscription events_;
};

}  // namespace tavelle::x11
