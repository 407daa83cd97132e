#include "tests/platform/x11/EventLoop.h"
#include "tests/platform/x11/KeyBackend.h"
#include "tests/platform/x11/KeyWindow.h"
#include "tests/platform/x11/Person.h"
#include "tests/platform/x11/Program.h"
#include "tests/platform/x11/Xephyr.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <optional>

namespace tavelle::x11::tests {
namespace {

constexpr std::uint32_t kVK_ANSI_X = 7;
constexpr std::uint32_t kVK_ANSI_Y = 16;
constexpr std::uint32_t superShift = cmdKey | shiftKey;

using Strokes = std::vector<std::string>;
using Keys = std::vector<xcb_keycode_t>;

// A window with the focus, a hotkey Super+Shift+X, and someone at a real keyboard.
template <Xephyr::Repeats repeats>
class HotKeyAtAKeyboard : public testing::Test {
 protected:
  static void SetUpTestSuite() { server.emplace(repeats); }
  static void TearDownTestSuite() { server.reset(); }

  HotKeyAtAKeyboard() : person(server->hostDisplay()) {
    EXPECT_EQ(backend.registerHotKey(kVK_ANSI_X, superShift, 1), noErr);
    keyPresses_ = backend.connection->events().subscribe([this](const auto& event) {
      if (Connection::typeOf(event) == XCB_KEY_PRESS) ++keyPresses;
    });
  }

  void press(const Keys& keys) {
    for (const auto key : keys) person.press(key);
  }
  void release(const Keys& keys) {
    for (const auto key : keys) person.release(key);
  }

  // Waits for the hotkey's `count`th press.
  bool isPressed(std::size_t count = 1) {
    return waitUntil([this, count] { return backend.presses.size() >= count; });
  }

  bool isLetGo() {
    const bool isUp = waitUntil([this] {
      return !backend.heldKeys.isGuarding() && window.keysDownOnDevices().none() && window.keysDown().none();
    });
    settle(*backend.connection);  // the server has the keyboard back
    return isUp;
  }

  // Before a key goes down once more that was pressed after `before` and is up now. Where that took so long that it may
  // have repeated, a press that follows at once is taken for a repeat.
  void passTimeAfterAPress(xcb_timestamp_t before) {
    const bool mayRepeat = backend.connection->serverTime() - before >= HeldKeys::shortestDelay;
    passTime(*backend.connection, mayRepeat ? HeldKeys::longestGap + 1 : 2);
  }

  // Ends each test: nothing is down anywhere, the keyboard is free, and a plain key is typed as a plain key.
  void expectNothingStuck() {
    EXPECT_TRUE(isLetGo());
    EXPECT_TRUE(window.keysDown().none()) << window.keysDown();
    EXPECT_TRUE(window.keysDownOnDevices().none()) << window.keysDownOnDevices();
    EXPECT_EQ(window.modifiers(), 0);
    EXPECT_TRUE(waitUntil([this] { return window.grabKeyboard(); })) << "somebody has it still";
    window.ungrabKeyboard();
    const int before = window.strokeCount("q");
    person.tap(keyQ);
    EXPECT_TRUE(waitUntil([&] { return window.strokeCount("q") == before + 1; }));
  }

  // Presses a hotkey's keys and registers it then, as one is that was recorded by pressing it. False where that took so
  // long that the first repeat, 0.6 s after the press, may come too soon to be told from a press: all is as before
  // then.
  bool registerWhileItIsHeld() {
    constexpr xcb_timestamp_t inTime = 400;
    const auto before = backend.connection->serverTime();
    press({keySuper, keyShift, keyY});
    EXPECT_TRUE(waitUntil([this] { return window.strokeCount("Shift+Super+y") >= 1; }));
    settle(*backend.connection);
    EXPECT_EQ(backend.registerHotKey(kVK_ANSI_Y, superShift, 2), noErr);
    if (backend.connection->serverTime() - before <= inTime) return true;
    release({keyY, keyShift, keySuper});
    EXPECT_TRUE(isLetGo());
    EXPECT_EQ(backend.carbonEvents.unregisterEventHotKey(backend.hotKeys.back()), noErr);
    settle(*backend.connection);
    backend.presses.clear();
    keyPresses = 0;
    window.forget();
    return false;
  }

  void expectNoPressBeforeItIsLetGo() {
    while (!registerWhileItIsHeld()) ASSERT_FALSE(HasFailure());
    ASSERT_TRUE(waitUntil([this] { return keyPresses >= 10; })) << "it repeats";
    release({keyY, keyShift, keySuper});
    ASSERT_TRUE(isLetGo());
    EXPECT_EQ(backend.presses.size(), 0u);
    press({keySuper, keyShift, keyY});
    EXPECT_TRUE(isPressed());
    release({keyY, keyShift, keySuper});
    EXPECT_TRUE(isLetGo());
    EXPECT_EQ(backend.presses.size(), 1u);
    EXPECT_EQ(window.strokes(), Strokes{"Shift+Super+y"});
    expectNothingStuck();
  }

  static std::optional<Xephyr> server;

  KeyWindow window;
  // No limit ends in time what no release has ended.
  KeyBackend backend{{.silence = std::chrono::minutes{1}, .whole = std::chrono::minutes{1}}};
  Person person;
  int keyPresses = 0;

 private:
  Subscription keyPresses_;
};

template <Xephyr::Repeats repeats>
std::optional<Xephyr> HotKeyAtAKeyboard<repeats>::server;

// The host's repeats go on whatever is typed synthetically: the harsher of the two.
using HeldHotKey = HotKeyAtAKeyboard<Xephyr::Repeats::fromHost>;
using HeldHotKeyThatTheServerRepeats = HotKeyAtAKeyboard<Xephyr::Repeats::inside>;

TEST_F(HeldHotKey, copiesWhileItIsHeldAndTypesNothingForAsLongAsItRepeats) {
  backend.onPress = [this] { backend.post(EditingKey::copy); };
  press({keySuper, keyShift, keyX});
  // The first repeat comes after 0.6 s, the others at 25 a second: this is a second and a half.
  ASSERT_TRUE(waitUntil([this] { return keyPresses >= 25; }));
  EXPECT_EQ(window.strokes(), Strokes{"Control+c"});
  release({keyX, keyShift, keySuper});
  ASSERT_TRUE(isLetGo());
  EXPECT_EQ(window.strokes(), Strokes{"Control+c"});
  EXPECT_EQ(backend.presses.size(), 1u);
  expectNothingStuck();
}

TEST_F(HeldHotKey, pastesWhileItIsStillHeldAndRepeats) {
  backend.onPress = [this] { backend.post(EditingKey::copy); };
  press({keySuper, keyShift, keyX});
  ASSERT_TRUE(waitUntil([this] { return keyPresses >= 5; }));
  backend.post(EditingKey::paste);
  ASSERT_TRUE(waitUntil([this] { return keyPresses >= 15; }));
  release({keyX, keyShift, keySuper});
  ASSERT_TRUE(isLetGo());
  EXPECT_EQ(window.strokes(), (Strokes{"Control+c", "Control+v"}));
  expectNothingStuck();
}

TEST_F(HeldHotKey, isOnePressHoweverOftenItRepeatsBeforeTheCopy) {
  press({keySuper, keyShift, keyX});
  ASSERT_TRUE(waitUntil([this] { return keyPresses >= 10; }));
  backend.post(EditingKey::copy);
  ASSERT_TRUE(waitUntil([this] { return keyPresses >= 20; }));
  release({keySuper, keyShift, keyX});
  ASSERT_TRUE(isLetGo());
  EXPECT_EQ(window.strokes(), Strokes{"Control+c"});
  EXPECT_EQ(backend.presses.size(), 1u);
  expectNothingStuck();
}

TEST_F(HeldHotKey, doesNotHoldUpWhoeverTypesOnOnceItIsLetGo) {
  press({keySuper, keyShift, keyX});
  ASSERT_TRUE(isPressed());
  release({keyX});
  ASSERT_TRUE(waitUntil([this] { return !window.keysDownOnDevices().test(keyX); }));
  settle(*backend.connection);
  press({keyY});
  release({keySuper, keyShift});
  EXPECT_TRUE(waitUntil([this] { return !backend.heldKeys.isGuarding(); }));
  EXPECT_TRUE(window.keysDownOnDevices().test(keyY));
  person.tap(keyQ);
  EXPECT_TRUE(waitUntil([this] { return window.strokeCount("q") == 1; }));
  release({keyY});
  expectNothingStuck();
}

TEST_F(HeldHotKey, typesNothingWhenItsModifiersAreLetGoFirst) {
  backend.onPress = [this] { backend.post(EditingKey::copy); };
  press({keySuper, keyShift, keyX});
  ASSERT_TRUE(waitUntil([this] { return keyPresses >= 5; }));
  release({keySuper, keyShift});
  ASSERT_TRUE(waitUntil([this] { return keyPresses >= 15; }));
  EXPECT_TRUE(backend.heldKeys.isGuarding());
  release({keyX});
  ASSERT_TRUE(isLetGo());
  EXPECT_EQ(window.strokes(), Strokes{"Control+c"});
  EXPECT_EQ(backend.presses.size(), 1u);
  expectNothingStuck();
}

TEST_F(HeldHotKeyThatTheServerRepeats, isOnePressHoweverOftenItRepeats) {
  press({keySuper, keyShift, keyX});
  ASSERT_TRUE(waitUntil([this] { return keyPresses >= 10; }));
  backend.post(EditingKey::copy);
  ASSERT_TRUE(waitUntil([this] { return window.strokeCount("Control+c") == 1; }));
  backend.post(EditingKey::paste);
  release({keySuper, keyShift, keyX});
  ASSERT_TRUE(isLetGo());
  EXPECT_EQ(window.strokes(), (Strokes{"Control+c", "Control+v"}));
  EXPECT_EQ(backend.presses.size(), 1u);
  expectNothingStuck();
}

TEST_F(HeldHotKey, isNoPressWhereItIsHeldSinceBeforeItWasRegistered) {
  expectNoPressBeforeItIsLetGo();
}

TEST_F(HeldHotKeyThatTheServerRepeats, isNoPressWhereItIsHeldSinceBeforeItWasRegistered) {
  expectNoPressBeforeItIsLetGo();
}

TEST_F(HeldHotKey, isAPressWhereItsKeyWasLetGoBeforeItRepeated) {
  press({keySuper, keyShift, keyY});
  settle(*backend.connection);
  const auto before = backend.connection->serverTime();
  ASSERT_EQ(backend.registerHotKey(kVK_ANSI_Y, superShift, 2), noErr);
  release({keyY});
  ASSERT_TRUE(waitUntil([this] { return !window.keysDownOnDevices().test(keyY); }));
  settle(*backend.connection);
  passTimeAfterAPress(before);
  press({keyY});
  EXPECT_TRUE(isPressed());
  release({keyY, keyShift, keySuper});
  expectNothingStuck();
}

// In which order the keys are let go, and after how many of them the copy is posted.
TEST_F(HeldHotKey, copiesAndLeavesNoKeyDownInWhateverOrderItIsLetGo) {
  Keys order = {keyX, keyShift, keySuper};
  std::ranges::sort(order);
  std::size_t runs = 0;
  do {
    for (std::size_t released = 0; released <= order.size(); ++released) {
      for (const bool isSeen : {true, false}) {
        SCOPED_TRACE(testing::Message() << "let go first: " << int{order[0]} << " " << int{order[1]}
                                        << ", before copy: " << released << ", seen: " << isSeen);
        window.forget();
        press({keySuper, keyShift, keyX});
        ASSERT_TRUE(isPressed(++runs));
        for (std::size_t i = 0; i < released; ++i) person.release(order[i]);
        // The server knows of the releases when the copy is posted; the program perhaps not yet.
        const auto isUp = [&] { return released == 0 || !window.keysDownOnDevices().test(order[released - 1]); };
        if (isSeen) {
          ASSERT_TRUE(waitUntil(isUp));
        }
        while (!isUp()) continue;
        backend.post(EditingKey::copy);
        for (std::size_t i = released; i < order.size(); ++i) {
          person.release(order[i]);
          if (!isSeen || i + 1 == order.size()) continue;
          ASSERT_TRUE(waitUntil([&] { return !window.keysDownOnDevices().test(order[i]); }));
          settle(*backend.connection);
          EXPECT_TRUE(backend.heldKeys.isGuarding()) << "others are held still";
        }
        ASSERT_TRUE(isLetGo());
        ASSERT_TRUE(waitUntil([this] { return !window.strokes().empty(); }));
        EXPECT_EQ(window.strokes(), Strokes{"Control+c"});
        EXPECT_EQ(window.modifiers(), 0);
        passTime(*backend.connection);
      }
    }
  } while (std::ranges::next_permutation(order).found);
  EXPECT_EQ(runs, 48u);
  expectNothingStuck();
}

TEST_F(HeldHotKey, copiesWhenItsKeyIsTheOneThatCopies) {
  ASSERT_EQ(backend.registerHotKey(kVK_ANSI_C, superShift, 2), noErr);
  backend.onPress = [this] { backend.post(EditingKey::copy); };
  press({keySuper, keyShift, keyC});
  ASSERT_TRUE(waitUntil([this] { return keyPresses >= 15; }));
  backend.post(EditingKey::copy);
  ASSERT_TRUE(waitUntil([this] { return keyPresses >= 20; }));
  release({keyShift, keyC, keySuper});
  ASSERT_TRUE(isLetGo());
  EXPECT_EQ(window.strokes(), (Strokes{"Control+c", "Control+c"}));
  EXPECT_EQ(backend.presses.size(), 1u);
  expectNothingStuck();
}

TEST_F(HeldHotKey, copiesByALentKeyAndTypesNothingForAsLongAsItRepeats) {
  Program::outputOf({"setxkbmap", "ru"});
  settle(*backend.connection);
  backend.onPress = [this] { backend.post(EditingKey::copy); };
  press({keySuper, keyShift, keyX});
  ASSERT_TRUE(waitUntil([this] { return keyPresses >= 25; }));
  backend.post(EditingKey::paste);
  ASSERT_TRUE(waitUntil([this] { return keyPresses >= 30; }));
  release({keyX, keyShift, keySuper});
  ASSERT_TRUE(isLetGo());
  EXPECT_EQ(window.strokes(), (Strokes{"Control+c", "Control+v"}));
  EXPECT_EQ(backend.presses.size(), 1u);
  Program::outputOf({"setxkbmap", "us"});
  expectNothingStuck();
}

TEST_F(HeldHotKey, isPressedAgainWhileItsModifiersAreHeld) {
  backend.onPress = [this] { backend.post(EditingKey::copy); };
  press({keySuper, keyShift});
  for (std::size_t count = 1; count <= 20; ++count) {
    const auto before = backend.connection->serverTime();
    person.press(keyX);
    ASSERT_TRUE(isPressed(count));
    person.release(keyX);
    ASSERT_TRUE(waitUntil([this] { return !window.keysDownOnDevices().test(keyX); }));
    passTimeAfterAPress(before);
  }
  release({keySuper, keyShift});
  ASSERT_TRUE(isLetGo());
  EXPECT_EQ(backend.presses.size(), 20u);
  EXPECT_EQ(window.strokes(), Strokes(20, "Control+c"));
  expectNothingStuck();
}

TEST_F(HeldHotKey, givesWayToAnotherHotKeyWithTheSameModifiersHeld) {
  ASSERT_EQ(backend.registerHotKey(kVK_ANSI_Y, superShift, 2), noErr);
  backend.onPress = [this] { backend.post(EditingKey::copy); };
  press({keySuper, keyShift, keyX});
  ASSERT_TRUE(isPressed(1));
  press({keyY});
  ASSERT_TRUE(isPressed(2));
  release({keyX, keyY, keySuper, keyShift});
  ASSERT_TRUE(isLetGo());
  EXPECT_EQ(backend.presses[0].id, 1u);
  EXPECT_EQ(backend.presses[1].id, 2u);
  expectNothingStuck();
}

TEST_F(HeldHotKey, arrivesTwoThousandTimesAndLeavesNoKeyDown) {
  backend.onPress = [this] { backend.post(EditingKey::copy); };
  for (std::size_t count = 1; count <= 2000; ++count) {
    press({keySuper, keyShift, keyX});
    ASSERT_TRUE(isPressed(count)) << count;
    release({keyX, keyShift, keySuper});
    ASSERT_TRUE(isLetGo()) << count;
    ASSERT_EQ(window.strokes(), Strokes{"Control+c"}) << count;
    window.forget();
    passTime(*backend.connection);
  }
  EXPECT_EQ(backend.presses.size(), 2000u);
  expectNothingStuck();
}

TEST_F(HeldHotKey, worksWithCapsLockAndNumLockOnAndLeavesThemOn) {
  constexpr std::uint16_t bothLocks = XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2;
  person.tap(keyCapsLock);
  person.tap(keyNumLock);
  ASSERT_TRUE(waitUntil([this] { return window.modifiers() == bothLocks; }));
  window.forget();
  backend.onPress = [this] { backend.post(EditingKey::copy); };
  press({keySuper, keyShift, keyX});
  ASSERT_TRUE(isPressed());
  release({keyX, keyShift, keySuper});
  ASSERT_TRUE(isLetGo());
  backend.post(EditingKey::paste);
  ASSERT_TRUE(waitUntil([this] { return window.strokeCount("Control+v") == 1; }));
  EXPECT_EQ(window.strokes(), (Strokes{"Control+c", "Control+v"}));
  EXPECT_EQ(window.modifiers(), bothLocks);
  person.tap(keyCapsLock);
  person.tap(keyNumLock);
  ASSERT_TRUE(waitUntil([this] { return window.modifiers() == 0; }));
  expectNothingStuck();
}

TEST_F(HeldHotKey, letsAltGoOnlyOnceControlIsDown) {
  ASSERT_EQ(backend.registerHotKey(kVK_ANSI_Y, optionKey, 2), noErr);
  backend.onPress = [this] { backend.post(EditingKey::copy); };
  press({keyAlt, keyY});
  ASSERT_TRUE(isPressed());
  EXPECT_TRUE(waitUntil([this] { return window.keys().size() == 6; }));
  EXPECT_EQ(window.keys(), (Strokes{"+64", "+37", "-64", "+54", "-54", "-37"}));
  release({keyY, keyAlt});
  expectNothingStuck();
}

TEST_F(HeldHotKey, isHeardWhileItsSyntheticStrokeIsAHotKeyOfOurs) {
  ASSERT_EQ(backend.registerHotKey(kVK_ANSI_C, controlKey, 2), noErr);
  press({keyControl, keyC});
  ASSERT_TRUE(isPressed(1));
  backend.post(EditingKey::copy);
  release({keyC, keyControl});
  ASSERT_TRUE(isLetGo());
  ASSERT_TRUE(waitUntil([this] { return window.strokeCount("Control+c") == 1; }));
  passTime(*backend.connection);
  press({keyControl, keyC});
  ASSERT_TRUE(isPressed(2));
  release({keyC, keyControl});
  ASSERT_TRUE(isLetGo());
  EXPECT_EQ(backend.presses.size(), 2u);
  EXPECT_EQ(window.strokeCount("Control+c"), 1);
  expectNothingStuck();
}

TEST_F(HeldHotKey, keepsNothingFromTheWindowWhenNothingIsHeld) {
  window.forget();
  backend.post(EditingKey::copy);
  backend.post(EditingKey::paste);
  EXPECT_FALSE(backend.heldKeys.isGuarding());
  ASSERT_TRUE(waitUntil([this] { return window.strokes().size() == 2; }));
  EXPECT_EQ(window.keys(), (Strokes{"+37", "+54", "-54", "-37", "+37", "+55", "-55", "-37"}));
  EXPECT_EQ(window.grabCount(), 0);
  expectNothingStuck();
}

TEST_F(HeldHotKey, pastesLateThoughTheShiftKeyIsHeld) {
  press({keyShift});
  ASSERT_TRUE(waitUntil([this] { return window.keysDown().test(keyShift); }));
  backend.post(EditingKey::paste);
  EXPECT_TRUE(backend.heldKeys.isGuarding());
  ASSERT_TRUE(waitUntil([this] { return window.strokes().size() == 1; }));
  EXPECT_EQ(window.strokes(), Strokes{"Control+v"});
  release({keyShift});
  expectNothingStuck();
}

TEST_F(HeldHotKey, postsToAMenuThatHasTheKeyboardAndLeavesItThere) {
  KeyWindow menu;
  window.takeFocus();
  ASSERT_TRUE(menu.grabKeyboard());
  press({keyShift});
  ASSERT_TRUE(waitUntil([this] { return window.keysDown().test(keyShift); }));
  backend.post(EditingKey::paste);
  EXPECT_TRUE(waitUntil([this] { return !backend.heldKeys.isGuarding(); }));
  EXPECT_TRUE(waitUntil([&] { return menu.strokes() == Strokes{"Control+v"}; }));
  release({keyShift});
  person.tap(keyQ);
  EXPECT_TRUE(waitUntil([&] { return menu.strokeCount("q") == 1; }));
  menu.ungrabKeyboard();
  EXPECT_TRUE(window.strokes().empty());
  expectNothingStuck();
}

TEST_F(HeldHotKey, isLetGoWithTheProgramThatHoldsIt) {
  {
    KeyBackend other;
    ASSERT_EQ(other.registerHotKey(kVK_ANSI_Y, superShift, 1), noErr);
    press({keySuper, keyShift, keyY});
    ASSERT_TRUE(waitUntil([&] { return other.presses.size() == 1; }));
    other.post(EditingKey::copy);
    EXPECT_TRUE(other.heldKeys.isGuarding());
  }
  release({keyY, keyShift, keySuper});
  expectNothingStuck();
}

TEST_F(HeldHotKeyThatTheServerRepeats, isLetGoWhenNothingIsHeardOfItAnyMore) {
  KeyBackend other{{.silence = std::chrono::milliseconds{50}, .whole = std::chrono::seconds{60}}};
  ASSERT_EQ(other.registerHotKey(kVK_ANSI_Y, superShift, 1), noErr);
  press({keySuper, keyShift, keyY});
  ASSERT_TRUE(waitUntil([&] { return other.presses.size() == 1; }));
  other.post(EditingKey::copy);
  EXPECT_TRUE(waitUntil([&] { return !other.heldKeys.isGuarding(); }));
  EXPECT_TRUE(window.keysDownOnDevices().test(keyY));
  release({keyY, keyShift, keySuper});
  expectNothingStuck();
}

TEST_F(HeldHotKey, isLetGoInTheEndThoughItRepeatsForEver) {
  KeyBackend other{{.silence = std::chrono::seconds{10}, .whole = std::chrono::milliseconds{50}}};
  ASSERT_EQ(other.registerHotKey(kVK_ANSI_Y, superShift, 1), noErr);
  press({keySuper, keyShift, keyY});
  ASSERT_TRUE(waitUntil([&] { return other.presses.size() == 1; }));
  EXPECT_TRUE(waitUntil([&] { return !other.heldKeys.isGuarding(); }));
  EXPECT_TRUE(window.keysDownOnDevices().test(keyY));
  release({keyY, keyShift, keySuper});
  expectNothingStuck();
}

}  // namespace
}  // namespace tavelle::x11::tests
