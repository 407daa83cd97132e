#include "tests/platform/x11/KeyBackend.h"

#include "platform/FatalError.h"
#include "tests/platform/x11/EventLoop.h"

#include <array>

namespace tavelle::x11::tests {
namespace {

std::unique_ptr<Connection> opened() {
  auto connection = Connection::open();
  if (!connection) fatalError("no X server for the test");
  return connection;
}

}  // namespace

KeyBackend::KeyBackend(HeldKeys::Limits limits)
    : connection(opened()),
      keyboard(*connection),
      grabs(*connection, keyboard),
      heldKeys(*connection, keyboard, grabs, limits),
      carbonEvents(*connection, grabs, heldKeys),
      quartzEvents(*connection, keyboard, heldKeys, postedEditingKeys),
      notices_(postedEditingKeys.subscribe([this](const auto& notice) { notices.push_back(notice); })) {
  const std::array types = {EventTypeSpec{kEventClassKeyboard, kEventHotKeyPressed}};
  EventHandlerRef handler = nullptr;
  const auto status =
      carbonEvents.installEventHandler(carbonEvents.getApplicationEventTarget(), pressed, types, this, &handler);
  if (status != noErr) fatalError("the event handler was refused");
}

OSStatus KeyBackend::registerHotKey(std::uint32_t virtualKeyCode, std::uint32_t modifiers, std::uint32_t id) {
  EventHotKeyRef reference = nullptr;
  const auto status = carbonEvents.registerEventHotKey(virtualKeyCode, modifiers, {testSignature, id},
                                                       carbonEvents.getApplicationEventTarget(), 0, &reference);
  if (status == noErr) hotKeys.push_back(reference);
  return status;
}

void KeyBackend::post(EditingKey key) {
  const auto source = quartzEvents.createEventSource(EventSourceStateID::hidSystemState);
  const auto keyCode = key == EditingKey::copy ? kVK_ANSI_C : kVK_ANSI_V;
  const auto down = quartzEvents.createKeyboardEvent(source.get(), keyCode, true);
  const auto up = quartzEvents.createKeyboardEvent(source.get(), keyCode, false);
  if (!down || !up) fatalError("no synthetic keys on the test's X server");
  quartzEvents.setFlags(*down, eventFlagMaskCommand);
  quartzEvents.setFlags(*up, eventFlagMaskCommand);
  quartzEvents.post(EventTapLocation::hidEventTap, *down);
  quartzEvents.post(EventTapLocation::hidEventTap, *up);
  roundTrip(*connection);
}

OSStatus KeyBackend::pressed(EventHandlerCallRef, EventRef event, void* self) {
  auto& own = *static_cast<KeyBackend*>(self);
  EventHotKeyID id{};
  const auto status =
      own.carbonEvents.getEventParameter(event, kEventParamDirectObject, typeEventHotKeyID, sizeof id, &id);
  if (status != noErr) return status;
  own.presses.push_back(id);
  own.onPress();
  return noErr;
}

}  // namespace tavelle::x11::tests
