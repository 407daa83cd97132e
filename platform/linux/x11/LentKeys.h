#pragma once

#include "platform/linux/GSourcePtr.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/Keyboard.h"

#include <xcb/xcb.h>

#include <map>
#include <optional>

namespace tavelle::x11 {

// Keys without a meaning that are given a letter for a while: how a letter is typed that none of the person's layouts
// has. An application looks the meaning of a key up when it comes to the key's event, so a letter stays for some
// seconds.
class LentKeys {
 public:
  LentKeys(Connection& connection, Keyboard& keyboard);
  // Gives everything back.
  ~LentKeys();
  LentKeys(const LentKeys&) = delete;
  LentKeys& operator=(const LentKeys&) = delete;

  // Lends a key to `letter`. Nothing where the keymap has no key to spare.
  std::optional<xcb_keycode_t> lend(char letter);

  // A key is used once more: if it is a lent one it keeps its letter for longer.
  void used(xcb_keycode_t key);

 private:
  void giveBackLater();
  void giveBack();

  Connection& connection_;
  Keyboard& keyboard_;
  std::map<char, xcb_keycode_t> lent_;
  GSourcePtr giveBackSource_;
};

}  // namespace tavelle::x11
