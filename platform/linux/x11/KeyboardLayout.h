#pragma once

#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/KeySet.h"

#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace tavelle::x11 {

// Where the letters of the editing keys are in the person's layouts. A copy: it stays what it was when the keymap
// changes.
class KeyboardLayout {
 public:
  // Reads the keymap of one of the server's keyboards, in several round trips.
  static KeyboardLayout read(Connection& connection, std::uint8_t keyboard);

  // The key that types `letter` ('c' or 'v') with no modifier: in the layout `group` if there is one, else in the first
  // layout that has one, since applications look for the letter of a shortcut in the person's other layouts too.
  std::optional<xcb_keycode_t> keyFor(char letter, std::uint8_t group) const;

  // Takes note of a spare key that was given a letter which no layout has.
  void setKey(char letter, xcb_keycode_t key);

  // The keys that have no meaning in any layout.
  const KeySet& spareKeys() const { return spareKeys_; }

 private:
  static constexpr std::size_t groupLimit = 4;  // of the protocol
  struct Letter {
    char letter;
    xcb_keycode_t usual;  // where it is on most keyboards
    std::array<xcb_keycode_t, groupLimit> keys{};
  };

  std::array<Letter, 2> letters_{{{'c', 54}, {'v', 55}}};
  KeySet spareKeys_;
};

}  // namespace tavelle::x11
