#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavelle {

// A hotkey's combination as a person writes it: "Command+Shift+R", "Super+Shift+R" or "ctrl+alt+F5", in any letter
// case.
struct KeyCombination {
  std::uint32_t keyCode;    // virtual key code
  std::uint32_t modifiers;  // Carbon modifier mask

  // Nothing where a part is unknown or the key is missing.
  static std::optional<KeyCombination> parse(std::string_view text);

  // By the names of this desktop: "Control+Alt+Shift+Super+R".
  std::string description() const;
};

// Each letter, digit and function key with the modifiers that hotkeys usually have.
std::vector<KeyCombination> usualCombinations();

}  // namespace tavelle
