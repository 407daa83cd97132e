#pragma once

#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/KeySet.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <vector>

namespace tavelle::x11 {

// Which of the server's eight modifiers mean what, and which keys set them. Shift, Lock and Control have their places;
// the others are wherever the person's keymap puts them.
class ModifierMap {
 public:
  // Asks the server: one round trip.
  static ModifierMap read(Connection& connection);

  // The server's modifiers for a Carbon modifier mask: Command is Super, Option is Alt.
  std::uint16_t maskOf(std::uint32_t carbonModifiers) const;

  // The modifiers that lock keys (Caps Lock, Num Lock, Scroll Lock) set: they say nothing about what is held.
  std::uint16_t locks() const { return locks_; }
  // Every combination of them, none first.
  std::vector<std::uint16_t> lockCombinations() const;

  // The keys that set a modifier while they are held.
  const KeySet& keys() const { return keys_; }
  // The modifiers that the keys of `held` set.
  std::uint16_t maskOfKeys(const KeySet& held) const;

  // The keys to press for a modifier; 0 where the keyboard has none.
  xcb_keycode_t shiftKeycode() const { return shiftKeycode_; }
  xcb_keycode_t controlKeycode() const { return controlKeycode_; }
  xcb_keycode_t altKeycode() const { return altKeycode_; }
  // The keys of Alt and Super: applications open a menu when one of them is pressed and let go alone.
  KeySet menuKeys() const;

  bool operator==(const ModifierMap&) const = default;

 private:
  struct Row {
    std::uint16_t mask;
    KeySet keys;
    bool operator==(const Row&) const = default;
  };

  void learn(std::uint16_t mask, xcb_keycode_t key, const xcb_keysym_t* symbols, std::uint8_t count);

  std::vector<Row> rows_;
  KeySet keys_;
  std::uint16_t locks_ = XCB_MOD_MASK_LOCK;
  std::uint16_t alt_ = 0;
  std::uint16_t super_ = 0;
  xcb_keycode_t shiftKeycode_ = 0;
  xcb_keycode_t controlKeycode_ = 0;
  xcb_keycode_t altKeycode_ = 0;
};

}  // namespace tavelle::x11
