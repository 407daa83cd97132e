#include "tests/platform/x11/EventLoop.h"
#include "tests/platform/x11/KeyBackend.h"
#include "tests/platform/x11/KeyWindow.h"
#include "tests/platform/x11/Person.h"
#include "tests/platform/x11/Program.h"
#include "tests/platform/x11/XServer.h"

#include <gtest/gtest.h>
// xkb.h names a field `explicit`.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

#include <array>
#include <optional>

namespace tavelle::x11::tests {
namespace {

constexpr std::uint32_t kVK_ANSI_X = 7;
constexpr std::uint32_t kVK_ANSI_Y = 16;
constexpr std::uint32_t kVK_ANSI_Q = 12;
constexpr std::uint32_t kVK_F13 = 105;
constexpr std::uint32_t superShift = cmdKey | shiftKey;
constexpr std::uint16_t superShiftMask = XCB_MOD_MASK_4 | XCB_MOD_MASK_SHIFT;

class HotKeys : public testing::Test {
 protected:
  static void SetUpTestSuite() { server.emplace(); }
  static void TearDownTestSuite() { server.reset(); }

  HotKeys() : person(server->display()) {}
  ~HotKeys() override { Program::outputOf({"setxkbmap", "us", "-option", ""}); }

  std::size_t pressesOf(const std::vector<xcb_keycode_t>& keys, std::size_t expected) {
    passTime(*backend.connection);
    const auto before = backend.presses.size();
    for (const auto key : keys) person.press(key);
    for (auto key = keys.rbegin(); key != keys.rend(); ++key) person.release(*key);
    waitUntil([&] { return backend.presses.size() == before + expected && !backend.heldKeys.isGuarding(); });
    settle(*backend.connection);
    waitUntil([&] { return !backend.heldKeys.isGuarding(); });
    return backend.presses.size() - before;
  }

  // Runs a command that changes the keymap, and serves the loop until the backend has taken the change in.
  void changeKeymap(const std::vector<std::string>& command) {
    Program::outputOf(command);
    settle(*backend.connection);
  }

  // How many requests have been sent to the server, this question being the last.
  unsigned int requests() const {
    const auto cookie = xcb_get_input_focus(*backend.connection);
    xcb_discard_reply(*backend.connection, cookie.sequence);
    return cookie.sequence;
  }

  static std::optional<XServer> server;

  KeyWindow other;  // another program
  KeyBackend backend;
  Person person;
};

std::optional<XServer> HotKeys::server;

TEST_F(HotKeys, wantExactlyTheirModifiers) {
  ASSERT_EQ(backend.registerHotKey(kVK_ANSI_X, superShift, 1), noErr);
  EXPECT_EQ(pressesOf({keySuper, keyX}, 0), 0u);
  EXPECT_EQ(pressesOf({keyShift, keyX}, 0), 0u);
  EXPECT_EQ(pressesOf({keySuper, keyShift, keyControl, keyX}, 0), 0u);
  EXPECT_EQ(pressesOf({keyX}, 0), 0u);
}

TEST_F(HotKeys, needNoModifier) {
  ASSERT_EQ(backend.registerHotKey(kVK_F13, 0, 1), noErr);
  EXPECT_EQ(pressesOf({191}, 1), 1u);
}

TEST_F(HotKeys, workWithAnyOfTheLocksOn) {
  ASSERT_EQ(backend.registerHotKey(kVK_ANSI_X, superShift, 1), noErr);
  for (const auto& locks :
       std::vector<std::vector<xcb_keycode_t>>{{keyCapsLock}, {keyNumLock}, {keyCapsLock, keyNumLock}}) {
    for (const auto lock : locks) person.tap(lock);
    EXPECT_EQ(pressesOf({keySuper, keyShift, keyX}, 1), 1u);
    for (const auto lock : locks) person.tap(lock);
  }
  EXPECT_EQ(other.modifiers(), 0);
}

TEST_F(HotKeys, workWithScrollLockOnWhereItIsAModifier) {
  changeKeymap({"xmodmap", "-e", "add mod3 = Scroll_Lock"});
  ASSERT_EQ(backend.registerHotKey(kVK_ANSI_X, superShift, 1), noErr);
  EXPECT_FALSE(other.grabKey(keyX, superShiftMask | XCB_MOD_MASK_3));
  EXPECT_FALSE(other.grabKey(keyX, superShiftMask | XCB_MOD_MASK_3 | XCB_MOD_MASK_2 | XCB_MOD_MASK_LOCK));
}

TEST_F(HotKeys, keepNothingOfACombinationThatIsHeldWithOneLockOnly) {
  ASSERT_TRUE(other.grabKey(keyX, superShiftMask | XCB_MOD_MASK_2));
  EXPECT_EQ(backend.registerHotKey(kVK_ANSI_X, superShift, 1), eventHotKeyExistsErr);
  settle(*backend.connection);
  EXPECT_TRUE(other.grabKey(keyX, superShiftMask));
  EXPECT_TRUE(other.grabKey(keyX, superShiftMask | XCB_MOD_MASK_LOCK));
}

TEST_F(HotKeys, areFreeForOthersOnceUnregistered) {
  ASSERT_EQ(backend.registerHotKey(kVK_ANSI_X, superShift, 1), noErr);
  EXPECT_FALSE(other.grabKey(keyX, superShiftMask));
  EXPECT_EQ(backend.carbonEvents.unregisterEventHotKey(backend.hotKeys.front()), noErr);
  settle(*backend.connection);
  EXPECT_TRUE(other.grabKey(keyX, superShiftMask));
  EXPECT_TRUE(other.grabKey(keyX, superShiftMask | XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2));
  EXPECT_EQ(backend.carbonEvents.unregisterEventHotKey(backend.hotKeys.front()), paramErr);
}

TEST_F(HotKeys, stayGrabbedWhenTheyAreRegisteredAnewOnTheSameTurn) {
  ASSERT_EQ(backend.registerHotKey(kVK_ANSI_X, superShift, 1), noErr);
  ASSERT_EQ(backend.registerHotKey(kVK_ANSI_Y, superShift, 2), noErr);
  settle(*backend.connection);
  // The first one of a turn asks which keys are down.
  ASSERT_EQ(backend.registerHotKey(kVK_ANSI_Q, superShift, 3), noErr);
  const auto before = requests();
  for (const auto hotKey : backend.hotKeys) backend.carbonEvents.unregisterEventHotKey(hotKey);
  EXPECT_EQ(backend.registerHotKey(kVK_ANSI_X, superShift, 4), noErr);
  EXPECT_EQ(requests(), before + 1) << "the server was asked for something in between";
  EXPECT_FALSE(other.grabKey(keyX, superShiftMask));
  EXPECT_EQ(pressesOf({keySuper, keyShift, keyX}, 1), 1u);
  EXPECT_EQ(backend.presses.back().id, 4u);
  EXPECT_TRUE(other.grabKey(keyY, superShiftMask)) << "the one that was not is free";
}

TEST_F(HotKeys, areNotMissedByAStrokeRightAfterTheyWereUnregistered) {
  ASSERT_EQ(backend.registerHotKey(kVK_ANSI_C, controlKey, 1), noErr);
  settle(*backend.connection);
  backend.carbonEvents.unregisterEventHotKey(backend.hotKeys.front());
  backend.post(EditingKey::copy);
  EXPECT_TRUE(waitUntil([&] { return other.strokeCount("Control+c") == 1; })) << "a grab took it from the window";
}

TEST_F(HotKeys, mayBeUnregisteredByTheirOwnHandler) {
  ASSERT_EQ(backend.registerHotKey(kVK_ANSI_X, superShift, 1), noErr);
  backend.onPress = [this] { backend.carbonEvents.unregisterEventHotKey(backend.hotKeys.front()); };
  EXPECT_EQ(pressesOf({keySuper, keyShift, keyX}, 1), 1u);
  EXPECT_EQ(pressesOf({keySuper, keyShift, keyX}, 0), 0u);
}

TEST_F(HotKeys, needAKeyThatExistsATargetAndAPlaceForTheReference) {
  EventHotKeyRef reference = nullptr;
  auto& events = backend.carbonEvents;
  const auto target = events.getApplicationEventTarget();
  EXPECT_EQ(events.registerEventHotKey(0x34, superShift, {1, 1}, target, 0, &reference), paramErr);
  EXPECT_EQ(events.registerEventHotKey(0x3F, superShift, {1, 1}, target, 0, &reference), paramErr);
  EXPECT_EQ(events.registerEventHotKey(0xFFFF, superShift, {1, 1}, target, 0, &reference), paramErr);
  EXPECT_EQ(events.registerEventHotKey(kVK_ANSI_X, superShift, {1, 1}, nullptr, 0, &reference), paramErr);
  EXPECT_EQ(events.registerEventHotKey(kVK_ANSI_X, superShift, {1, 1}, target, 0, nullptr), paramErr);
  EXPECT_EQ(reference, nullptr);
  EXPECT_EQ(events.unregisterEventHotKey(nullptr), paramErr);
}

TEST_F(HotKeys, giveTheirIdentityToWhoeverAsksForItAsItIs) {
  ASSERT_EQ(backend.registerHotKey(kVK_ANSI_X, superShift, 7), noErr);
  struct Asked {
    CarbonEvents& events;
    std::vector<OSStatus> statuses;
    EventHotKeyID id{};
  } asked{backend.carbonEvents, {}};
  const auto handler = [](EventHandlerCallRef, EventRef event, void* data) -> OSStatus {
    auto& [events, statuses, id] = *static_cast<Asked*>(data);
    std::array<char, 16> space{};
    const auto read = [&](std::uint32_t name, std::uint32_t type, std::size_t size) {
      statuses.push_back(events.getEventParameter(event, name, type, size, space.data()));
    };
    read(0x6E6F6E65, typeEventHotKeyID, 8);
    read(kEventParamDirectObject, 0x6C6F6E67, 8);
    read(kEventParamDirectObject, typeEventHotKeyID, 4);
    read(kEventParamDirectObject, typeEventHotKeyID, 16);
    statuses.push_back(events.getEventParameter(event, kEventParamDirectObject, typeEventHotKeyID, 8, &id));
    return eventNotHandledErr;
  };
  const std::array types = {EventTypeSpec{kEventClassKeyboard, kEventHotKeyPressed}};
  const auto target = backend.carbonEvents.getApplicationEventTarget();
  ASSERT_EQ(backend.carbonEvents.installEventHandler(target, handler, types, &asked, nullptr), noErr);
  // The handler does not take the event, so that the one installed before it gets it too.
  EXPECT_EQ(pressesOf({keySuper, keyShift, keyX}, 1), 1u);
  const auto missing = eventParameterNotFoundErr;
  EXPECT_EQ(asked.statuses, (std::vector<OSStatus>{missing, missing, missing, missing, noErr}));
  EXPECT_EQ(asked.id, (EventHotKeyID{testSignature, 7}));
}

TEST_F(HotKeys, goToTheHandlerInstalledLastUnlessItDeclines) {
  ASSERT_EQ(backend.registerHotKey(kVK_ANSI_X, superShift, 1), noErr);
  int taken = 0;
  const auto handler = [](EventHandlerCallRef, EventRef, void* data) -> OSStatus {
    ++*static_cast<int*>(data);
    return noErr;
  };
  const std::array types = {EventTypeSpec{kEventClassKeyboard, kEventHotKeyPressed}};
  const auto target = backend.carbonEvents.getApplicationEventTarget();
  EventHandlerRef reference = nullptr;
  ASSERT_EQ(backend.carbonEvents.installEventHandler(target, handler, types, &taken, &reference), noErr);
  EXPECT_NE(reference, nullptr);
  EXPECT_EQ(pressesOf({keySuper, keyShift, keyX}, 0), 0u);
  EXPECT_EQ(taken, 1);
}

TEST_F(HotKeys, takeHandlersForNothingElse) {
  const auto handler = [](EventHandlerCallRef, EventRef, void*) -> OSStatus { return noErr; };
  const std::array released = {EventTypeSpec{kEventClassKeyboard, 6}};
  const std::array pressed = {EventTypeSpec{kEventClassKeyboard, kEventHotKeyPressed}};
  auto& events = backend.carbonEvents;
  const auto target = events.getApplicationEventTarget();
  EXPECT_EQ(events.installEventHandler(target, handler, released, nullptr, nullptr), paramErr);
  EXPECT_EQ(events.installEventHandler(target, nullptr, pressed, nullptr, nullptr), paramErr);
  EXPECT_EQ(events.installEventHandler(nullptr, handler, pressed, nullptr, nullptr), paramErr);
}

TEST_F(HotKeys, stayOnTheirKeysWhateverTheLayout) {
  ASSERT_EQ(backend.registerHotKey(kVK_ANSI_Q, superShift, 1), noErr);
  for (const char* const layout : {"de", "fr", "ru", "us"}) {
    changeKeymap({"setxkbmap", layout});
    EXPECT_EQ(pressesOf({keySuper, keyShift, keyQ}, 1), 1u) << layout;
  }
  changeKeymap({"setxkbmap", "us,ru"});
  xcb_xkb_latch_lock_state(*backend.connection, 0x100, 0, 0, 1, 1, 0, 0, 0);
  EXPECT_EQ(pressesOf({keySuper, keyShift, keyQ}, 1), 1u) << "second group";
}

TEST_F(HotKeys, followAModifierThatMoves) {
  ASSERT_EQ(backend.registerHotKey(kVK_ANSI_X, superShift, 1), noErr);
  EXPECT_EQ(pressesOf({keySuper, keyShift, keyX}, 1), 1u);
  changeKeymap({"xmodmap", "-e", "clear mod4", "-e", "add mod3 = Super_L Super_R"});
  ASSERT_TRUE(waitUntil([this] { return backend.keyboard.modifiers().maskOf(cmdKey) == XCB_MOD_MASK_3; }));
  EXPECT_EQ(pressesOf({keySuper, keyShift, keyX}, 1), 1u);
  EXPECT_TRUE(other.grabKey(keyX, superShiftMask)) << "the old place is free";
  EXPECT_FALSE(other.grabKey(keyX, XCB_MOD_MASK_3 | XCB_MOD_MASK_SHIFT));
}

TEST_F(HotKeys, outliveAMoveToAPlaceThatAnotherProgramHolds) {
  ASSERT_EQ(backend.registerHotKey(kVK_ANSI_X, superShift, 1), noErr);
  ASSERT_EQ(backend.registerHotKey(kVK_ANSI_Y, superShift, 2), noErr);
  ASSERT_TRUE(other.grabKey(keyX, XCB_MOD_MASK_3 | XCB_MOD_MASK_SHIFT));
  changeKeymap({"xmodmap", "-e", "clear mod4", "-e", "add mod3 = Super_L Super_R"});
  ASSERT_TRUE(waitUntil([this] { return backend.keyboard.modifiers().maskOf(cmdKey) == XCB_MOD_MASK_3; }));
  EXPECT_EQ(pressesOf({keySuper, keyShift, keyX}, 0), 0u);
  EXPECT_EQ(pressesOf({keySuper, keyShift, keyY}, 1), 1u);
  // Back where it was, everything is as it was.
  changeKeymap({"setxkbmap", "us"});
  ASSERT_TRUE(waitUntil([this] { return backend.keyboard.modifiers().maskOf(cmdKey) == XCB_MOD_MASK_4; }));
  EXPECT_EQ(pressesOf({keySuper, keyShift, keyX}, 1), 1u);
  EXPECT_EQ(backend.carbonEvents.unregisterEventHotKey(backend.hotKeys.front()), noErr);
}

TEST_F(HotKeys, areNotGrabbedAnewForAMereChangeOfLetters) {
  ASSERT_EQ(backend.registerHotKey(kVK_ANSI_X, superShift, 1), noErr);
  int changes = 0;
  const auto counting = backend.keyboard.modifiersChanged().subscribe([&] { ++changes; });
  changeKeymap({"xmodmap", "-e", "keycode 24 = Cyrillic_shorti Cyrillic_SHORTI"});
  changeKeymap({"xmodmap", "-e", "keycode 248 = c C"});
  for (int i = 0; i < 3; ++i) {
    backend.post(EditingKey::copy);
    settle(*backend.connection);
  }
  EXPECT_EQ(changes, 0);
}

}  // namespace
}  // namespace tavelle::x11::tests
