#include "ui/HotkeyString.h"

#include "platform/CarbonEvents.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace tavelle {
namespace {

struct Modifier {
  std::uint32_t cocoaFlag;
  std::uint32_t carbonMask;
  std::string_view symbol;
};

// In the order in which a hotkey shows them.
constexpr std::array modifierKeys{
    Modifier{0x100000, cmdKey, "⌘"},
    Modifier{0x20000, shiftKey, "⇧"},
    Modifier{0x80000, optionKey, "⌥"},
    Modifier{0x40000, controlKey, "⌃"},
};

struct LetterKey {
  std::uint32_t keyCode;
  char letter;
};

// Virtual key codes of the ANSI layout (Events.h).
constexpr std::array letterKeys{
    LetterKey{0, 'A'},  LetterKey{1, 'S'},  LetterKey{2, 'D'},  LetterKey{3, 'F'},  LetterKey{4, 'H'},
    LetterKey{5, 'G'},  LetterKey{6, 'Z'},  LetterKey{7, 'X'},  LetterKey{8, 'C'},  LetterKey{9, 'V'},
    LetterKey{11, 'B'}, LetterKey{12, 'Q'}, LetterKey{13, 'W'}, LetterKey{14, 'E'}, LetterKey{15, 'R'},
    LetterKey{16, 'Y'}, LetterKey{17, 'T'}, LetterKey{31, 'O'}, LetterKey{32, 'U'}, LetterKey{34, 'I'},
    LetterKey{35, 'P'}, LetterKey{37, 'L'}, LetterKey{38, 'J'}, LetterKey{40, 'K'}, LetterKey{45, 'N'},
    LetterKey{46, 'M'},
};

}  // namespace

std::uint32_t carbonModifiers(std::uint32_t modifierFlags) {
  std::uint32_t mask = 0;
  for (const auto& modifier : modifierKeys) {
    if ((modifierFlags & modifier.cocoaFlag) != 0) mask |= modifier.carbonMask;
  }
  return mask;
}

std::string hotkeyString(std::uint32_t keyCode, std::uint32_t modifiers) {
  if (keyCode == 0 && modifiers == 0) return "None";
  std::string text;
  for (const auto& modifier : modifierKeys) {
    if ((modifiers & modifier.carbonMask) != 0) text += modifier.symbol;
  }
  return text + keyCodeToString(keyCode);
}

std::string keyCodeToString(std::uint32_t keyCode) {
  const auto* const key = std::find_if(letterKeys.begin(), letterKeys.end(),
                                       [keyCode](const LetterKey& candidate) { return candidate.keyCode == keyCode; });
  return key != letterKeys.end() ? std::string{key->letter} : "Key" + std::to_string(keyCode);
}

std::optional<std::string> duplicateHotkeyWarning(const RewriteProfile& profile,
                                                  const std::vector<RewriteProfile>& profiles) {
  if (profile.keyCode == 0) return std::nullopt;
  const auto other = std::find_if(profiles.begin(), profiles.end(), [&profile](const RewriteProfile& candidate) {
    return candidate.id != profile.id && candidate.keyCode == profile.keyCode &&
           candidate.modifiers == profile.modifiers;
  });
  if (other == profiles.end()) return std::nullopt;
  return "Hotkey conflicts with \"" + other->name + "\"";
}

}  // namespace tavelle
