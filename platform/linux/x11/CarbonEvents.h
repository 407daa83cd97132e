#pragma once

#include "observation/Subscription.h"
#include "platform/CarbonEvents.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/HeldKeys.h"
#include "platform/linux/x11/HotKeyGrabs.h"

#include <memory>
#include <vector>

namespace tavelle::x11 {

// Hotkeys by passive grabs. Main thread only.
class X11CarbonEvents : public CarbonEvents {
 public:
  // Make it after `heldKeys`, which has to see each event first.
  X11CarbonEvents(Connection& connection, HotKeyGrabs& grabs, HeldKeys& heldKeys);
  ~X11CarbonEvents() override;

  EventTargetRef getApplicationEventTarget() override;
  OSStatus installEventHandler(EventTargetRef target, EventHandlerProc handler, std::span<const EventTypeSpec> types,
                               void* userData, EventHandlerRef* out) override;
  OSStatus registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers, EventHotKeyID id, EventTargetRef target,
                               std::uint32_t options, EventHotKeyRef* out) override;
  OSStatus unregisterEventHotKey(EventHotKeyRef hotKey) override;
  OSStatus getEventParameter(EventRef event, std::uint32_t name, std::uint32_t type, std::size_t size,
                             void* out) override;

  // Gives every hotkey back and hears of none any more: the program is about to end.
  void withdraw();

 private:
  // What the opaque references point to.
  struct Handler;
  struct HotKey;
  struct Event;

  void received(const xcb_generic_event_t& event);
  void deliver(EventHotKeyID id);

  HotKeyGrabs& grabs_;
  HeldKeys& heldKeys_;
  std::vector<std::unique_ptr<Handler>> handlers_;
  std::vector<std::unique_ptr<HotKey>> hotKeys_;
  Subscription events_;
};

}  // namespace tavelle::x11
