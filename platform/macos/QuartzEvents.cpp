#include "platform/macos/QuartzEvents.h"

#include "platform/macos/CFRef.h"

#include <CoreGraphics/CoreGraphics.h>

#include <utility>

namespace tavelle {
namespace {

struct MacEventSource : EventSource {
  explicit MacEventSource(CFRef<CGEventSourceRef> created) : source(std::move(created)) {}
  CFRef<CGEventSourceRef> source;
};

struct MacKeyboardEvent : KeyboardEvent {
  explicit MacKeyboardEvent(CFRef<CGEventRef> created) : event(std::move(created)) {}
  CFRef<CGEventRef> event;
};

}  // namespace

std::unique_ptr<EventSource> MacQuartzEvents::createEventSource(EventSourceStateID state) {
  CFRef<CGEventSourceRef> source{CGEventSourceCreate(static_cast<CGEventSourceStateID>(state))};
  return source ? std::make_unique<MacEventSource>(std::move(source)) : nullptr;
}

std::unique_ptr<KeyboardEvent> MacQuartzEvents::createKeyboardEvent(EventSource* source, std::uint16_t keyCode,
                                                                    bool keyDown) {
  const auto from = source ? static_cast<MacEventSource*>(source)->source.get() : nullptr;
  CFRef<CGEventRef> event{CGEventCreateKeyboardEvent(from, keyCode, keyDown)};
  return event ? std::make_unique<MacKeyboardEvent>(std::move(event)) : nullptr;
}

void MacQuartzEvents::setFlags(KeyboardEvent& event, std::uint64_t flags) {
  CGEventSetFlags(static_cast<MacKeyboardEvent&>(event).event.get(), static_cast<CGEventFlags>(flags));
}

void MacQuartzEvents::post(EventTapLocation tap, const KeyboardEvent& event) {
  CGEventPost(static_cast<CGEventTapLocation>(tap), static_cast<const MacKeyboardEvent&>(event).event.get());
}

}  // namespace tavelle
