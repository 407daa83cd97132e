#include "platform/linux/x11/CarbonEvents.h"

#include "platform/linux/VirtualKeyCodes.h"

#include <algorithm>
#include <cstring>

namespace tavelle::x11 {

struct X11CarbonEvents::Handler {
  EventHandlerProc procedure;
  void* userData;
};

struct X11CarbonEvents::HotKey {
  EventHotKeyID id;
  std::unique_ptr<HotKeyGrab> grab;
};

struct X11CarbonEvents::Event {
  EventHotKeyID hotKey;
};

X11CarbonEvents::X11CarbonEvents(Connection& connection, HotKeyGrabs& grabs, HeldKeys& heldKeys)
    : grabs_(grabs),
      heldKeys_(heldKeys),
      events_(connection.events().subscribe([this](const auto& event) { received(event); })) {}

X11CarbonEvents::~X11CarbonEvents() = default;

EventTargetRef X11CarbonEvents::getApplicationEventTarget() {
  return reinterpret_cast<EventTargetRef>(this);
}

OSStatus X11CarbonEvents::installEventHandler(EventTargetRef target, EventHandlerProc handler,
                                              std::span<const EventTypeSpec> types, void* userData,
                                              EventHandlerRef* out) {
  if (target != getApplicationEventTarget() || !handler) return paramErr;
  const bool isForHotKeys = std::ranges::any_of(types, [](const auto& type) {
    return type.eventClass == kEventClassKeyboard && type.eventKind == kEventHotKeyPressed;
  });
  if (!isForHotKeys) return paramErr;  // no other event is ever sent
  handlers_.push_back(std::make_unique<Handler>(Handler{handler, userData}));
  if (out) *out = reinterpret_cast<EventHandlerRef>(handlers_.back().get());
  return noErr;
}

OSStatus X11CarbonEvents::registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers, EventHotKeyID id,
                                              EventTargetRef target, std::uint32_t, EventHotKeyRef* out) {
  const auto key = keycodeOf(keyCode);
  if (!key || !out || target != getApplicationEventTarget()) return paramErr;
  auto grab = grabs_.grab(*key, modifiers);
  if (!grab) return eventHotKeyExistsErr;
  hotKeys_.push_back(std::make_unique<HotKey>(HotKey{id, std::move(grab)}));
  heldKeys_.becameHotKey(*key);
  *out = reinterpret_cast<EventHotKeyRef>(hotKeys_.back().get());
  return noErr;
}

OSStatus X11CarbonEvents::unregisterEventHotKey(EventHotKeyRef hotKey) {
  const auto removed = std::erase_if(
      hotKeys_, [&](const auto& known) { return reinterpret_cast<EventHotKeyRef>(known.get()) == hotKey; });
  return removed == 1 ? noErr : paramErr;
}

OSStatus X11CarbonEvents::getEventParameter(EventRef event, std::uint32_t name, std::uint32_t type, std::size_t size,
                                            void* out) {
  if (!event || !out) return paramErr;
  const auto& id = reinterpret_cast<const Event*>(event)->hotKey;
  if (name != kEventParamDirectObject || type != typeEventHotKeyID || size != sizeof id) {
    return eventParameterNotFoundErr;
  }
  std::memcpy(out, &id, sizeof id);
  return noErr;
}

void X11CarbonEvents::withdraw() {
  events_.cancel();
  hotKeys_.clear();
}

void X11CarbonEvents::received(const xcb_generic_event_t& event) {
  if (Connection::typeOf(event) != XCB_KEY_PRESS) return;
  const auto& press = Connection::as<xcb_key_press_event_t>(event);
  const auto modifiers = heldKeys_.modifiersOf(press);
  const auto hotKey = std::ranges::find_if(
      hotKeys_, [&](const auto& known) { return grabs_.matches(*known->grab, press.detail, modifiers); });
  if (hotKey == hotKeys_.end()) return;
  if (heldKeys_.press(press)) deliver((*hotKey)->id);
}

void X11CarbonEvents::deliver(EventHotKeyID id) {
  Event event{id};
  // The handler that was installed last comes first, as on the platform, and the next one where it does not care. A
  // handler may install another.
  for (auto i = handlers_.size(); i-- > 0;) {
    const auto handler = *handlers_[i];
    if (handler.procedure(nullptr, reinterpret_cast<EventRef>(&event), handler.userData) != eventNotHandledErr) return;
  }
}

}  // namespace tavelle::x11
