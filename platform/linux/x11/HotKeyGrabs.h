#pragma once

#include "observation/Subscription.h"
#include "platform/linux/GSourcePtr.h"
#include "platform/linux/x11/Connection.h"
#include "platform/linux/x11/Keyboard.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace tavelle::x11 {

// A key with modifiers that is ours wherever the keyboard focus is. It is given back with the object, on the main
// loop's next turn.
class HotKeyGrab {
 public:
  virtual ~HotKeyGrab() = default;
};

// The passive grabs behind the hotkeys: each on every screen, with every combination of the lock modifiers. When the
// keymap moves a modifier the grabs follow it.
//
// All hotkeys are given up and taken again at every key stroke in a profile's name. A grab that is taken again on the
// turn on which it was given up never leaves the server: a hotkey that is pressed just then is not lost, and a hundred
// of them cost nothing.
class HotKeyGrabs {
 public:
  HotKeyGrabs(Connection& connection, Keyboard& keyboard);
  ~HotKeyGrabs();
  HotKeyGrabs(const HotKeyGrabs&) = delete;
  HotKeyGrabs& operator=(const HotKeyGrabs&) = delete;

  // Null where another program holds the combination with any of the locks, or this one holds it already; then nothing
  // of it stays grabbed. The grab must not outlive this object.
  std::unique_ptr<HotKeyGrab> grab(xcb_keycode_t key, std::uint32_t carbonModifiers);

  // Whether `grab` is the one of this key with these modifiers, as an event names them.
  bool matches(const HotKeyGrab& grab, xcb_keycode_t key, std::uint16_t modifiers) const;

  // Runs `work` with the grabs off that a synthetic stroke of this key would set off. One flush, if `work` waits for
  // nothing.
  void without(xcb_keycode_t key, std::uint16_t modifiers, const std::function<void()>& work);

 private:
  class Grab;

  // Where a grab is.
  struct Place {
    xcb_keycode_t key;
    std::uint16_t mask;
    bool operator==(const Place&) const = default;
  };

  bool take(const Place& place) const;
  void giveBack(const Place& place) const;
  void leave(const Place& place);
  void giveBackLeft();
  void takeUnchecked(const Place& place) const;
  void follow();

  template <typename Visit>
  void forEachVariant(const Place& place, Visit visit) const;

  Connection& connection_;
  Keyboard& keyboard_;
  std::vector<std::uint16_t> lockCombinations_;  // that the grabs were made with
  std::vector<xcb_window_t> roots_;
  std::vector<Grab*> grabs_;
  std::vector<Place> left_;  // still grabbed, for nobody any more
  GSourcePtr giveBackSource_;
  Subscription modifiersChanged_;
};

}  // namespace tavelle::x11
