#pragma once

#include <cstdint>
#include <optional>

namespace tavelle {

// The kernel's code (linux/input-event-codes.h) of the physical key that a virtual key code of Events.h names: the key
// in the same place, or with the same legend where the place differs between keyboards.
std::optional<std::uint16_t> evdevCodeOf(std::uint32_t virtualKeyCode);

// The same key as the X server numbers it, and Wayland's keymaps: the kernel's code and 8. Nothing for the keys past
// 255, which the X protocol cannot name.
std::optional<std::uint8_t> keycodeOf(std::uint32_t virtualKeyCode);

// And back. Nothing for the keys that have no virtual key code.
std::optional<std::uint16_t> virtualKeyCodeOf(std::uint32_t keycode);

}  // namespace tavelle
