#include "platform/linux/x11/Accessibility.h"
#include "tests/platform/contracts/AccessibilityContract.h"
#include "tests/platform/contracts/CarbonEventsContract.h"
#include "tests/platform/contracts/QuartzEventsContract.h"
#include "tests/platform/x11/EventLoop.h"
#include "tests/platform/x11/KeyBackend.h"
#include "tests/platform/x11/KeyWindow.h"
#include "tests/platform/x11/Person.h"
#include "tests/platform/x11/XServer.h"

#include <memory>
#include <string>
#include <vector>

namespace tavelle::tests {
namespace {

// A person at the keyboard of a private X server, and another program on it.
class GrabbedKeys {
 public:
  CarbonEvents& carbonEvents() { return backend_.carbonEvents; }

  void holdElsewhere(HotKeyCombination keys) {
    std::uint16_t modifiers = 0;
    for (const auto& [flag, mask, key] : modifierKeys) {
      if (keys.modifiers & flag) modifiers |= mask;
    }
    EXPECT_TRUE(other_.grabKey(keyOf(keys), modifiers));
  }

  void press(HotKeyCombination keys) {
    x11::tests::passTime(*backend_.connection);
    std::vector<xcb_keycode_t> down;
    for (const auto& [flag, mask, key] : modifierKeys) {
      if (keys.modifiers & flag) down.push_back(key);
    }
    for (const auto key : down) person_.press(key);
    person_.tap(keyOf(keys));
    for (const auto key : down) person_.release(key);
    pass();
  }

  void pass() {
    x11::tests::settle(*backend_.connection);
    EXPECT_TRUE(x11::tests::waitUntil([this] { return !backend_.heldKeys.isGuarding(); }));
  }

 private:
  struct ModifierKey {
    std::uint32_t flag;
    std::uint16_t mask;
    xcb_keycode_t key;
  };
  static constexpr ModifierKey modifierKeys[] = {{cmdKey, XCB_MOD_MASK_4, x11::tests::keySuper},
                                                 {shiftKey, XCB_MOD_MASK_SHIFT, x11::tests::keyShift},
                                                 {optionKey, XCB_MOD_MASK_1, x11::tests::keyAlt},
                                                 {controlKey, XCB_MOD_MASK_CONTROL, x11::tests::keyControl}};

  static xcb_keycode_t keyOf(HotKeyCombination keys) {
    return keys.keyCode == commandShiftX.keyCode ? x11::tests::keyX : x11::tests::keyY;
  }

  x11::tests::XServer server_;
  x11::tests::KeyWindow other_;
  x11::tests::KeyBackend backend_;
  x11::tests::Person person_{server_.display()};
};

// The keys that an application in front gets on a private X server.
class KeysOfTheServer {
 public:
  QuartzEvents& quartzEvents() { return backend_.quartzEvents; }

  std::vector<std::string> received(std::size_t count) {
    x11::tests::waitUntil([&] { return window_.strokes().size() >= count && window_.keysDown().none(); });
    std::vector<std::string> words;
    for (const auto& stroke : window_.strokes()) {
      words.push_back(stroke == "Control+c" ? "copy" : stroke == "Control+v" ? "paste" : stroke);
    }
    return words;
  }

 private:
  x11::tests::XServer server_;
  x11::tests::KeyWindow window_;
  x11::tests::KeyBackend backend_;
};

// A server that takes synthetic keys, or one that does not.
class TrustOfTheServer {
 public:
  explicit TrustOfTheServer(bool isTrusted)
      : server_("Xvfb", isTrusted ? std::vector<std::string>{} : std::vector<std::string>{"-extension", "XTEST"}) {}
  Accessibility& accessibility() { return accessibility_; }

 private:
  x11::tests::XServer server_;
  std::unique_ptr<x11::Connection> connection_ = x11::Connection::open();
  x11::X11Accessibility accessibility_{*connection_};
};

INSTANTIATE_TYPED_TEST_SUITE_P(Grabs, CarbonEventsContract, GrabbedKeys);
INSTANTIATE_TYPED_TEST_SUITE_P(XTest, QuartzEventsContract, KeysOfTheServer);
INSTANTIATE_TYPED_TEST_SUITE_P(XTest, AccessibilityContract, TrustOfTheServer);

}  // namespace
}  // namespace tavelle::tests
