#include "platform/fake/QuartzEvents.h"

#include <utility>

namespace tavelle {
namespace {

struct FakeEventSource : EventSource {
  explicit FakeEventSource(EventSourceStateID id) : state(id) {}
  EventSourceStateID state;
};

struct FakeKeyboardEvent : KeyboardEvent {
  std::optional<EventSourceStateID> source;
  std::uint16_t keyCode = 0;
  bool keyDown = false;
  std::uint64_t flags = 0;
};

}  // namespace

std::unique_ptr<EventSource> FakeQuartzEvents::createEventSource(EventSourceStateID state) {
  return std::make_unique<FakeEventSource>(state);
}

std::unique_ptr<KeyboardEvent> FakeQuartzEvents::createKeyboardEvent(EventSource* source, std::uint16_t keyCode,
                                                                     bool keyDown) {
  if (refusesEvents) return nullptr;
  auto event = std::make_unique<FakeKeyboardEvent>();
  if (const auto* own = static_cast<FakeEventSource*>(source)) event->source = own->state;
  event->keyCode = keyCode;
  event->keyDown = keyDown;
  return event;
}

void FakeQuartzEvents::setFlags(KeyboardEvent& event, std::uint64_t flags) {
  static_cast<FakeKeyboardEvent&>(event).flags = flags;
}

void FakeQuartzEvents::post(EventTapLocation tap, const KeyboardEvent& event) {
  const auto& own = static_cast<const FakeKeyboardEvent&>(event);
  posted.push_back({tap, own.source, own.keyCode, own.keyDown, own.flags});
  if (own.keyDown) {
    down_ = own.keyCode;
  } else if (std::exchange(down_, std::nullopt) == own.keyCode) {
    stroke(own.keyCode, own.flags);
  }
}

void FakeQuartzEvents::stroke(std::uint16_t keyCode, std::uint64_t flags) {
  if (flags == eventFlagMaskCommand && keyCode == kVK_ANSI_C) {
    log_.add("copied");
    onCopy();
  } else if (flags == eventFlagMaskCommand && keyCode == kVK_ANSI_V) {
    log_.add("pasted");
    onPaste();
  } else {
    onOtherKey(keyCode);
  }
}

}  // namespace tavelle
