#pragma once

#include "observation/Subscription.h"
#include "platform/linux/GSourcePtr.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/HotKeyGrabs.h"
#include "platform/linux/x11/KeySet.h"
#include "platform/linux/x11/Keyboard.h"

#include <xcb/xcb.h>
#include <xcb/xinput.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <vector>

namespace tavelle::x11 {

// A key with modifiers, pressed and let go.
struct KeyStroke {
  xcb_keycode_t key;
  std::vector<xcb_keycode_t> modifierKeys;
  std::uint16_t modifiers;  // that those keys set
};

// Keeps apart what a person still holds down and what Tavelle types.
//
// A hotkey is usually held for longer than it takes to answer it. A synthetic Control+C would then arrive as
// Super+Shift+Control+C, and once the modifiers were let go on the person's behalf the repeating key of the hotkey
// would write over the selection. So from the press on the keyboard is grabbed; it is given up for the moment of a
// stroke only, in the middle of which nothing of the person's can come; and it is given back when everything that the
// hotkey needed is up on the keyboards themselves. What was let go is never pressed again: a key that the person has
// released in the meantime would be stuck.
//
// Main thread only.
class HeldKeys {
 public:
  // A device that loses a release must not take the keyboard away for good. A key that is really held repeats, and so
  // is heard of; modifiers alone do not.
  struct Limits {
    std::chrono::milliseconds silence = std::chrono::seconds{10};
    std::chrono::milliseconds whole = std::chrono::seconds{60};
  };

  // In milliseconds of the server's clock. A keyboard at the end of a wire (a remote desktop, a nested server) may
  // repeat a key by letting it go and pressing it again at once. No finger is as quick with a key that it has held for
  // so long.
  static constexpr xcb_timestamp_t shortestDelay = 150;
  static constexpr xcb_timestamp_t longestGap = 40;

  HeldKeys(Connection& connection, Keyboard& keyboard, HotKeyGrabs& grabs);
  HeldKeys(Connection& connection, Keyboard& keyboard, HotKeyGrabs& grabs, Limits limits);
  ~HeldKeys();
  HeldKeys(const HeldKeys&) = delete;
  HeldKeys& operator=(const HeldKeys&) = delete;

  // The modifiers with which a key was pressed, less the locks: the ones that were let go for a stroke still count for
  // as long as they are held.
  std::uint16_t modifiersOf(const xcb_key_press_event_t& press) const;

  // This key has become that of a hotkey. Where it is down at that moment, as a hotkey is that was recorded by pressing
  // it, it is pressed when it goes down again.
  void becameHotKey(xcb_keycode_t key);

  // The key of a hotkey went down. False where it has been down all the time: it repeats.
  bool press(const xcb_key_press_event_t& press);

  // Sends `stroke` to whichever window has the keyboard focus. `down` are the keys that are down for applications
  // (QueryKeymap).
  void send(const KeyStroke& stroke, const KeySet& down);

  // Whether the keyboard is kept from the applications now.
  bool isGuarding() const { return isGuarding_; }

 private:
  void guard();
  void endGuard();
  void grabKeyboard();
  void type(const KeyStroke& stroke, const KeySet& lift);
  void fake(std::uint8_t type, xcb_keycode_t key);
  void watchReleases() const;
  const KeySet& keysDownThisTurn();
  void endTurn();

  void received(const xcb_generic_event_t& event);
  void released(xcb_keycode_t key, xcb_timestamp_t time);
  bool mayRepeat() const;
  bool isOwn(const xcb_input_raw_key_press_event_t& event) const;
  void checkSoon();
  void check();
  gint64 limit() const;
  void limitReached();

  Connection& connection_;
  Keyboard& keyboard_;
  HotKeyGrabs& grabs_;
  Limits limits_;
  std::uint8_t inputOpcode_ = 0;
  xcb_window_t grabWindow_;

  bool isGuarding_ = false;
  KeySet pressed_;  // keys of hotkeys that are held
  KeySet kept_;     // keys that went down while a hotkey's was, kept from the applications
  KeySet lifted_;   // keys that were let go for a stroke and that the person still holds
  KeySet early_;    // keys that have been down since before they became those of hotkeys
  struct {
    xcb_keycode_t key = 0;
    xcb_timestamp_t pressed = 0;
    xcb_timestamp_t released = 0;
    gint64 heard = 0;  // when we came to hear of its release
  } hotKey_;           // the last one
  std::optional<xcb_grab_keyboard_cookie_t> grabCookie_;
  unsigned int firstFake_ = 0;  // the requests of the last stroke
  unsigned int lastFake_ = 0;
  unsigned int eventCount_ = 0;
  std::optional<unsigned int> checkedAt_;  // eventCount_ when the devices were found with all keys up
  gint64 guardedSince_ = 0;
  gint64 heardLast_ = 0;

  GSourcePtr checkSource_;
  GSourcePtr limitSource_;
  GSourcePtr nextTurnSource_;
  std::optional<KeySet> keysDownThisTurn_;  // asked for once, however many hotkeys are registered
  Subscription events_;
};

}  // namespace tavelle::x11
