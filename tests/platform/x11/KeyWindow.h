#pragma once

#include "platform/linux/GSourcePtr.h"
#include "platform/linux/x11/KeySet.h"

#include <xcb/xcb.h>
#include <xkbcommon/xkbcommon.h>

#include <memory>
#include <string>
#include <vector>

namespace tavelle::x11::tests {

// An application's window that has the keyboard focus and writes down the key strokes that it gets, by a connection of
// its own. It understands them as toolkits do: by the keymap that the server has when the event is looked at; for a
// shortcut the letter of the active layout, or of another one where that has no Latin letter.
class KeyWindow {
 public:
  // `windowClass` is both parts of WM_CLASS.
  explicit KeyWindow(const std::string& windowClass = "editor");
  ~KeyWindow();
  KeyWindow(const KeyWindow&) = delete;
  KeyWindow& operator=(const KeyWindow&) = delete;

  xcb_window_t window() const { return window_; }

  // Each key but modifiers as it went down, as in "Control+c", "Shift+Super+x".
  const std::vector<std::string>& strokes();
  int strokeCount(const std::string& stroke);
  // Each key that went down or up, modifiers too, as in "+37", "-37".
  const std::vector<std::string>& keys();
  // How often another client's grab took the keyboard away for a time.
  int grabCount();
  void forget();

  void takeFocus();

  // Takes the keyboard as an open menu does. False where another client has it.
  bool grabKeyboard();
  void ungrabKeyboard();
  // Takes a hotkey as another program would. False where some client has it.
  bool grabKey(xcb_keycode_t key, std::uint16_t modifiers);

  // What the server takes to be down: the keys for all applications, and those of each keyboard.
  KeySet keysDown() const;
  KeySet keysDownOnDevices() const;
  // The modifiers and locks in effect.
  std::uint16_t modifiers() const;

 private:
  struct Disconnect {
    void operator()(xcb_connection_t* xcb) const { xcb_disconnect(xcb); }
  };
  struct Unref {
    void operator()(xkb_context* context) const { xkb_context_unref(context); }
    void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
  };

  void serve();
  void pressed(const xcb_key_press_event_t& press);
  xkb_keysym_t symbolOf(const xcb_key_press_event_t& press);
  std::vector<std::uint8_t> keyboards() const;

  std::unique_ptr<xcb_connection_t, Disconnect> xcb_;
  std::unique_ptr<xkb_context, Unref> context_;
  std::unique_ptr<xkb_keymap, Unref> keymap_;
  xcb_window_t root_ = 0;
  xcb_window_t window_ = 0;
  std::uint8_t xkbEvent_ = 0;
  std::vector<std::uint8_t> keyboards_;
  std::vector<std::string> strokes_;
  std::vector<std::string> keys_;
  int grabCount_ = 0;
  GSourcePtr source_;
};

}  // namespace tavelle::x11::tests
