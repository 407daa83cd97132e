#pragma once

#include "settings/RewriteProfile.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavelle {

// The Carbon mask of Cocoa's modifier flags (NSEventModifierFlags). Caps lock, function, numeric pad and help have no
// part in a hotkey.
std::uint32_t carbonModifiers(std::uint32_t modifierFlags);

// A hotkey as the person reads it: "⌘⇧R", or "None". The order is command, shift, option, control, not the menus'.
std::string hotkeyString(std::uint32_t keyCode, std::uint32_t modifiers);

// The letter of one of the 26 letter keys of the ANSI layout; any other key is "Key" and its code.
std::string keyCodeToString(std::uint32_t keyCode);

// What to say of a profile whose hotkey another has as well: the first such profile is named. A profile without a key
// code is in nobody's way.
std::optional<std::string> duplicateHotkeyWarning(const RewriteProfile& profile,
                                                  const std::vector<RewriteProfile>& profiles);

}  // namespace tavelle
