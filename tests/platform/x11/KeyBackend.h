#pragma once

#include "platform/linux/x11/CarbonEvents.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/HeldKeys.h"
#include "platform/linux/x11/HotKeyGrabs.h"
#include "platform/linux/x11/Keyboard.h"
#include "platform/linux/x11/QuartzEvents.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace tavelle::x11::tests {

// The signature of the tests' hotkeys: "TEST".
inline constexpr std::uint32_t testSignature = 0x54455354;

// Hotkeys and synthetic keys on $DISPLAY, put together as in the product, with everything that they report.
class KeyBackend {
 public:
  explicit KeyBackend(HeldKeys::Limits limits = HeldKeys::Limits{});

  // The hotkey's status; its reference is kept in `hotKeys`.
  OSStatus registerHotKey(std::uint32_t virtualKeyCode, std::uint32_t modifiers, std::uint32_t id);

  // Command+C or Command+V, as the pipeline posts them. The server has carried the stroke out then: a nested one that
  // hears of a key in the middle of a stroke believes its host and lets Control go.
  void post(EditingKey key);

  std::unique_ptr<Connection> connection;
  Keyboard keyboard;
  HotKeyGrabs grabs;
  HeldKeys heldKeys;
  X11CarbonEvents carbonEvents;
  PostedEditingKeys postedEditingKeys;
  X11QuartzEvents quartzEvents;

  std::vector<EventHotKeyRef> hotKeys;
  std::vector<EventHotKeyID> presses;
  std::function<void()> onPress = [] {};
  std::vector<PostedEditingKey> notices;

 private:
  static OSStatus pressed(EventHandlerCallRef next, EventRef event, void* self);

  Subscription notices_;
};

}  // namespace tavelle::x11::tests
