#include "platform/macos/CarbonEvents.h"

#include <Carbon/Carbon.h>

#include <vector>

namespace tavelle {

// What getEventParameter() copies is read as ours.
static_assert(sizeof(EventHotKeyID) == sizeof(::EventHotKeyID));

EventTargetRef MacCarbonEvents::getApplicationEventTarget() {
  return GetApplicationEventTarget();
}

OSStatus MacCarbonEvents::installEventHandler(EventTargetRef target, EventHandlerProc handler,
                                              std::span<const EventTypeSpec> types, void* userData,
                                              EventHandlerRef* out) {
  std::vector<::EventTypeSpec> list;
  for (const auto& type : types) list.push_back({type.eventClass, type.eventKind});
  return InstallEventHandler(target, handler, list.size(), list.data(), userData, out);
}

OSStatus MacCarbonEvents::registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers, EventHotKeyID id,
                                              EventTargetRef target, std::uint32_t options, EventHotKeyRef* out) {
  return RegisterEventHotKey(keyCode, modifiers, {id.signature, id.id}, target, options, out);
}

OSStatus MacCarbonEvents::unregisterEventHotKey(EventHotKeyRef hotKey) {
  return UnregisterEventHotKey(hotKey);
}

OSStatus MacCarbonEvents::getEventParameter(EventRef event, std::uint32_t name, std::uint32_t type, std::size_t size,
                                            void* out) {
  return GetEventParameter(event, name, type, nullptr, size, nullptr, out);
}

}  // namespace tavelle
