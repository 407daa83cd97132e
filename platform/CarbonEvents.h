#pragma once

#include "platform/OSStatus.h"

#include <cstddef>
#include <cstdint>
#include <span>

// The Carbon Event Manager's own types, which have no namespace.
struct OpaqueEventRef;
struct OpaqueEventTargetRef;
struct OpaqueEventHotKeyRef;
struct OpaqueEventHandlerRef;
struct OpaqueEventHandlerCallRef;

namespace tavelle {

// Opaque references, as the Carbon Event Manager hands them out. Null is none.
using EventRef = OpaqueEventRef*;
using EventTargetRef = OpaqueEventTargetRef*;
using EventHotKeyRef = OpaqueEventHotKeyRef*;
using EventHandlerRef = OpaqueEventHandlerRef*;
using EventHandlerCallRef = OpaqueEventHandlerCallRef*;

// CarbonEvents.h: codes of four characters, the first in the most significant byte.
inline constexpr std::uint32_t kEventClassKeyboard = 0x6B657962;  // 'keyb'
inline constexpr std::uint32_t kEventHotKeyPressed = 5;
inline constexpr std::uint32_t kEventParamDirectObject = 0x2D2D2D2D;  // '----'
inline constexpr std::uint32_t typeEventHotKeyID = 0x686B6964;        // 'hkid'

// The Carbon modifier mask: what a profile stores and RegisterEventHotKey takes.
inline constexpr std::uint32_t cmdKey = 0x100;
inline constexpr std::uint32_t shiftKey = 0x200;
inline constexpr std::uint32_t optionKey = 0x800;
inline constexpr std::uint32_t controlKey = 0x1000;

struct EventHotKeyID {
  std::uint32_t signature;
  std::uint32_t id;

  bool operator==(const EventHotKeyID&) const = default;
};

struct EventTypeSpec {
  std::uint32_t eventClass;
  std::uint32_t eventKind;
};

using EventHandlerProc = OSStatus (*)(EventHandlerCallRef next, EventRef event, void* userData);

// System-wide hotkeys (Carbon Event Manager; passive key grabs on X11). Main thread only; handlers are called there
// too.
//
// Key codes are the platform's virtual key codes (Events.h), which name physical keys. Linux: Command is Super, Option
// is Alt; a combination that another program holds is eventHotKeyExistsErr; the grab holds with any lock key on, and
// survives a change of the keyboard layout; autorepeat is one press.
class CarbonEvents {
 public:
  virtual ~CarbonEvents() = default;

  virtual EventTargetRef getApplicationEventTarget() = 0;
  virtual OSStatus installEventHandler(EventTargetRef target, EventHandlerProc handler,
                                       std::span<const EventTypeSpec> types, void* userData, EventHandlerRef* out) = 0;
  virtual OSStatus registerEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers, EventHotKeyID id,
                                       EventTargetRef target, std::uint32_t options, EventHotKeyRef* out) = 0;
  virtual OSStatus unregisterEventHotKey(EventHotKeyRef hotKey) = 0;

  // Copies a parameter of `event` into the `size` bytes at `out`.
  virtual OSStatus getEventParameter(EventRef event, std::uint32_t name, std::uint32_t type, std::size_t size,
                                     void* out) = 0;
};

}  // namespace tavelle
