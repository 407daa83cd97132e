#include "platform/linux/VirtualKeyCodes.h"

#include <linux/input-event-codes.h>

#include <algorithm>
#include <array>

namespace tavelle {
namespace {

constexpr std::uint16_t none = 0;  // KEY_RESERVED: no key of that code
constexpr std::uint32_t offset = 8;

// By virtual key code. The rows of the Apple keyboard are not in order; the comments name the codes whose key is called
// otherwise here.
constexpr std::array<std::uint16_t, 0x80> codes = {
    // 0x00
    KEY_A, KEY_S, KEY_D, KEY_F, KEY_H, KEY_G, KEY_Z, KEY_X, KEY_C, KEY_V,
    KEY_102ND,  // ISO_Section: the key that only ISO keyboards have
    KEY_B, KEY_Q, KEY_W, KEY_E, KEY_R,
    // 0x10
    KEY_Y, KEY_T, KEY_1, KEY_2, KEY_3, KEY_4, KEY_6, KEY_5, KEY_EQUAL, KEY_9, KEY_7, KEY_MINUS, KEY_8, KEY_0,
    KEY_RIGHTBRACE, KEY_O,
    // 0x20
    KEY_U, KEY_LEFTBRACE, KEY_I, KEY_P, KEY_ENTER, KEY_L, KEY_J, KEY_APOSTROPHE, KEY_K, KEY_SEMICOLON, KEY_BACKSLASH,
    KEY_COMMA, KEY_SLASH, KEY_N, KEY_M, KEY_DOT,
    // 0x30
    KEY_TAB, KEY_SPACE, KEY_GRAVE,
    KEY_BACKSPACE,  // Delete
    none, KEY_ESC,
    KEY_RIGHTMETA,  // RightCommand
    KEY_LEFTMETA,   // Command
    KEY_LEFTSHIFT, KEY_CAPSLOCK,
    KEY_LEFTALT,  // Option
    KEY_LEFTCTRL, KEY_RIGHTSHIFT,
    KEY_RIGHTALT,  // RightOption
    KEY_RIGHTCTRL,
    KEY_FN,  // Function
    // 0x40
    KEY_F17, KEY_KPDOT, none, KEY_KPASTERISK, none, KEY_KPPLUS, none,
    KEY_NUMLOCK,  // KeypadClear
    KEY_VOLUMEUP, KEY_VOLUMEDOWN, KEY_MUTE, KEY_KPSLASH, KEY_KPENTER, none, KEY_KPMINUS, KEY_F18,
    // 0x50
    KEY_F19, KEY_KPEQUAL, KEY_KP0, KEY_KP1, KEY_KP2, KEY_KP3, KEY_KP4, KEY_KP5, KEY_KP6, KEY_KP7, KEY_F20, KEY_KP8,
    KEY_KP9,
    KEY_YEN,      // JIS_Yen
    KEY_RO,       // JIS_Underscore
    KEY_KPCOMMA,  // JIS_KeypadComma
    // 0x60
    KEY_F5, KEY_F6, KEY_F7, KEY_F3, KEY_F8, KEY_F9,
    KEY_HANJA,  // JIS_Eisu: the second language key
    KEY_F11,
    KEY_HANGEUL,  // JIS_Kana: the first language key
    KEY_F13, KEY_F16, KEY_F14, none, KEY_F10,
    KEY_COMPOSE,  // ContextualMenu
    KEY_F12,
    // 0x70
    none, KEY_F15,
    KEY_INSERT,  // Help: the same place
    KEY_HOME, KEY_PAGEUP,
    KEY_DELETE,  // ForwardDelete
    KEY_F4, KEY_END, KEY_F2, KEY_PAGEDOWN, KEY_F1, KEY_LEFT, KEY_RIGHT, KEY_DOWN, KEY_UP, none};

}  // namespace

std::optional<std::uint16_t> evdevCodeOf(std::uint32_t virtualKeyCode) {
  if (virtualKeyCode >= codes.size() || codes[virtualKeyCode] == none) return std::nullopt;
  return codes[virtualKeyCode];
}

std::optional<std::uint8_t> keycodeOf(std::uint32_t virtualKeyCode) {
  const auto code = evdevCodeOf(virtualKeyCode);
  if (!code || *code + offset > 255) return std::nullopt;
  return static_cast<std::uint8_t>(*code + offset);
}

std::optional<std::uint16_t> virtualKeyCodeOf(std::uint32_t keycode) {
  const auto* const found = std::find(codes.begin(), codes.end(), keycode - offset);
  if (keycode <= offset || found == codes.end()) return std::nullopt;
  return static_cast<std::uint16_t>(found - codes.begin());
}

}  // namespace tavelle
