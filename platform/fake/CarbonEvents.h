#pragma once

#include "platform/CarbonEvents.h"
#include "platform/fake/EventLog.h"

#include <cstdint>
#include <map>
#include <set>
#include <string>

namespace tavelle {

// Hotkeys in memory: the test presses them, and says which registrations fail.
class FakeCarbonEvents : public CarbonEvents {
 public:
  struct HotKey {
    std::uint32_t keyCode;
    std::uint32_t modifiers;
    EventHotKeyID id;
    std::uint32_t options;

    bool operator==(const HotKey&) const = default;
  };

  explicit FakeCarbonEvents(EventLog& log) : log_(log) {}

  EventTargetRef getApplicationEventTarget() override;
  OSStatus installEventHandler(EventTargetRef target, EventHandlerProc handler, std::span<const EventTypeSpec> types,
                               void* userData, EventHandlerRef* out) override;
  OSStatus registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers, EventHotKeyID id, EventTargetRef target,
                               std::uint32_t options, EventHotKeyRef* out) override;
  OSStatus unregisterEventHotKey(EventHotKeyRef hotKey) override;
  OSStatus getEventParameter(EventRef event, std::uint32_t name, std::uint32_t type, std::size_t size,
                             void* out) override;

  // Delivers a press of hotkey number `id` to the installed handler, and returns the handler's status.
  OSStatus press(std::uint32_t id);
  OSStatus press(EventHotKeyID hotkey);
  // Calls the handler with no event at all.
  OSStatus callHandlerWithoutEvent();

  // Registered now, by number.
  std::map<std::uint32_t, HotKey> registered() const;

  // Key codes that another program holds.
  std::set<std::uint32_t> taken;
  // Key codes for which no reference comes back, though nothing went wrong.
  std::set<std::uint32_t> withoutReference;
  OSStatus installStatus = noErr;
  OSStatus parameterStatus = noErr;
  int installedHandlers = 0;
  EventTypeSpec handledType{};
  void* handlerUserData = nullptr;

 private:
  EventLog& log_;
  EventHandlerProc handler_ = nullptr;
  std::map<EventHotKeyRef, HotKey> hotKeys_;
  std::uintptr_t nextRef_ = 1;
};

}  // namespace tavelle
