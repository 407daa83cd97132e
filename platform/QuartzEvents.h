#pragma once

#include <cstdint>
#include <memory>

namespace tavelle {

enum class EventSourceStateID : std::int32_t { hidSystemState = 1 };  // kCGEventSourceStateHIDSystemState
enum class EventTapLocation : std::uint32_t { hidEventTap = 0 };      // kCGHIDEventTap
inline constexpr std::uint64_t eventFlagMaskCommand = 0x100000;       // kCGEventFlagMaskCommand

// Virtual key codes (Events.h) of the two editing keys that Tavelle presses.
inline constexpr std::uint16_t kVK_ANSI_C = 8;
inline constexpr std::uint16_t kVK_ANSI_V = 9;

class EventSource {
 public:
  virtual ~EventSource() = default;
};

class KeyboardEvent {
 public:
  virtual ~KeyboardEvent() = default;
};

// Synthetic key strokes into the frontmost application (Quartz event services; XTEST on X11). Main thread only.
//
// Linux: the Command flag means the desktop's own editing modifier: Control, or Control and Shift in a terminal, where
// Control alone would interrupt the program. The key pressed is the one that types the letter in the person's layout. A
// hotkey that is still held down spoils nothing, and no key is left stuck.
class QuartzEvents {
 public:
  virtual ~QuartzEvents() = default;

  // Null where the system refuses.
  virtual std::unique_ptr<EventSource> createEventSource(EventSourceStateID state) = 0;
  virtual std::unique_ptr<KeyboardEvent> createKeyboardEvent(EventSource* source, std::uint16_t keyCode,
                                                             bool keyDown) = 0;

  virtual void setFlags(KeyboardEvent& event, std::uint64_t flags) = 0;
  virtual void post(EventTapLocation tap, const KeyboardEvent& event) = 0;
};

}  // namespace tavelle
