#include "platform/fake/CarbonEvents.h"

#include <algorithm>
#include <cstring>

namespace tavelle {
namespace {

// References are numbers in disguise: nothing is ever behind them.
template <typename Ref>
Ref refOf(std::uintptr_t number) {
  return reinterpret_cast<Ref>(number);  // NOLINT(performance-no-int-to-ptr)
}

constexpr std::uintptr_t applicationTarget = 0xA9;
constexpr std::uintptr_t installedHandler = 0x4A;

}  // namespace

EventTargetRef FakeCarbonEvents::getApplicationEventTarget() {
  return refOf<EventTargetRef>(applicationTarget);
}

OSStatus FakeCarbonEvents::installEventHandler(EventTargetRef target, EventHandlerProc handler,
                                               std::span<const EventTypeSpec> types, void* userData,
                                               EventHandlerRef* out) {
  if (target != getApplicationEventTarget() || !handler || types.size() != 1) return paramErr;
  if (installStatus != noErr) return installStatus;
  ++installedHandlers;
  handler_ = handler;
  handledType = types[0];
  handlerUserData = userData;
  *out = refOf<EventHandlerRef>(installedHandler);
  return noErr;
}

OSStatus FakeCarbonEvents::registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers, EventHotKeyID id,
                                               EventTargetRef target, std::uint32_t options, EventHotKeyRef* out) {
  if (target != getApplicationEventTarget()) return paramErr;
  log_.add("registered " + std::to_string(id.id));
  const bool isOurs = std::ranges::any_of(hotKeys_, [&](const auto& known) {
    return known.second.keyCode == keyCode && known.second.modifiers == modifiers;
  });
  if (isOurs || taken.contains(keyCode)) return eventHotKeyExistsErr;
  if (withoutReference.contains(keyCode)) return noErr;
  *out = refOf<EventHotKeyRef>(nextRef_++);
  hotKeys_.emplace(*out, HotKey{keyCode, modifiers, id, options});
  return noErr;
}

OSStatus FakeCarbonEvents::unregisterEventHotKey(EventHotKeyRef hotKey) {
  const auto found = hotKeys_.find(hotKey);
  if (found == hotKeys_.end()) return paramErr;
  log_.add("unregistered " + std::to_string(found->second.id.id));
  hotKeys_.erase(found);
  return noErr;
}

OSStatus FakeCarbonEvents::getEventParameter(EventRef event, std::uint32_t name, std::uint32_t type, std::size_t size,
                                             void* out) {
  if (!event || !out) return paramErr;
  if (parameterStatus != noErr) return parameterStatus;
  if (name != kEventParamDirectObject || type != typeEventHotKeyID || size != sizeof(EventHotKeyID)) {
    return eventParameterNotFoundErr;
  }
  std::memcpy(out, event, size);
  return noErr;
}

OSStatus FakeCarbonEvents::press(std::uint32_t id) {
  const auto all = registered();
  const auto pressed = all.find(id);
  return press(pressed == all.end() ? EventHotKeyID{.signature = 0, .id = id} : pressed->second.id);
}

OSStatus FakeCarbonEvents::press(EventHotKeyID hotkey) {
  return handler_(nullptr, reinterpret_cast<EventRef>(&hotkey), handlerUserData);
}

OSStatus FakeCarbonEvents::callHandlerWithoutEvent() {
  return handler_(nullptr, nullptr, handlerUserData);
}

std::map<std::uint32_t, FakeCarbonEvents::HotKey> FakeCarbonEvents::registered() const {
  std::map<std::uint32_t, HotKey> byNumber;
  for (const auto& [ref, hotKey] : hotKeys_) byNumber.emplace(hotKey.id.id, hotKey);
  return byNumber;
}

}  // namespace tavelle
