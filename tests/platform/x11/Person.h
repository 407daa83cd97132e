#pragma once

#include "platform/linux/x11/XcbReply.h"

#include <xcb/xcb.h>

#include <memory>
#include <string>

namespace tavelle::x11::tests {

// X keycodes of the keys that the tests press.
inline constexpr xcb_keycode_t keyC = 54;
inline constexpr xcb_keycode_t keyV = 55;
inline constexpr xcb_keycode_t keyX = 53;
inline constexpr xcb_keycode_t keyY = 29;
inline constexpr xcb_keycode_t keyQ = 24;
inline constexpr xcb_keycode_t keyControl = 37;
inline constexpr xcb_keycode_t keyShift = 50;
inline constexpr xcb_keycode_t keyAlt = 64;
inline constexpr xcb_keycode_t keySuper = 133;
inline constexpr xcb_keycode_t keyCapsLock = 66;
inline constexpr xcb_keycode_t keyNumLock = 77;

// Someone at a display: presses and releases its keys, each call done when the server has carried it out.
class Person {
 public:
  explicit Person(const std::string& display);

  void press(xcb_keycode_t key) { fake(XCB_KEY_PRESS, key); }
  void release(xcb_keycode_t key) { fake(XCB_KEY_RELEASE, key); }
  void tap(xcb_keycode_t key) {
    press(key);
    release(key);
  }
  // Where the pointer is.
  void click() {
    constexpr std::uint8_t firstButton = 1;
    fake(XCB_BUTTON_PRESS, firstButton);
    fake(XCB_BUTTON_RELEASE, firstButton);
  }

 private:
  struct Disconnect {
    void operator()(xcb_connection_t* xcb) const { xcb_disconnect(xcb); }
  };

  void fake(std::uint8_t type, std::uint8_t detail);

  std::unique_ptr<xcb_connection_t, Disconnect> xcb_;
};

}  // namespace tavelle::x11::tests
