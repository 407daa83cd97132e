#pragma once

#include "platform/CarbonEvents.h"

namespace tavelle {

class MacCarbonEvents : public CarbonEvents {
 public:
  EventTargetRef getApplicationEventTarget() override;
  OSStatus installEventHandler(EventTargetRef target, EventHandlerProc handler, std::span<const EventTypeSpec> types,
                               void* userData, EventHandlerRef* out) override;
  OSStatus registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers, EventHotKeyID id, EventTargetRef target,
                               std::uint32_t options, EventHotKeyRef* out) override;
  OSStatus unregisterEventHotKey(EventHotKeyRef hotKey) override;
  OSStatus getEventParameter(EventRef event, std::uint32_t name, std::uint32_t type, std::size_t size,
                             void* out) override;
};

}  // namespace tavelle
