#include "platform/linux/x11/PointerPresses.h"

#include "tests/platform/x11/EventLoop.h"
#include "tests/platform/x11/KeyBackend.h"
#include "tests/platform/x11/KeyWindow.h"
#include "tests/platform/x11/Person.h"
#include "tests/platform/x11/XServer.h"

#include <gtest/gtest.h>

#include <optional>

namespace tavelle::x11::tests {
namespace {

class PointerPressesTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { server.emplace(); }
  static void TearDownTestSuite() { server.reset(); }

  PointerPressesTest() : person(server->display()), presses(*backend.connection) {}

  Subscription watch() {
    return presses.subscribe([this] { isPressed = true; });
  }

  // Whether a click is told of.
  bool hearsClick() {
    isPressed = false;
    settle(*backend.connection);  // the server knows by now what is wanted
    person.click();
    settle(*backend.connection);
    return isPressed;
  }

  static std::optional<XServer> server;

  KeyWindow other;  // another program
  KeyBackend backend;
  Person person;
  PointerPresses presses;
  bool isPressed = false;
};

std::optional<XServer> PointerPressesTest::server;

TEST_F(PointerPressesTest, areToldOfWhereverTheyAre) {
  const auto token = watch();
  EXPECT_TRUE(hearsClick());
  EXPECT_TRUE(hearsClick());
}

TEST_F(PointerPressesTest, areNotToldOfOnceNobodyWantsToKnow) {
  auto first = watch();
  auto second = watch();
  first.cancel();
  EXPECT_TRUE(hearsClick());
  second.cancel();
  EXPECT_FALSE(hearsClick());
}

TEST_F(PointerPressesTest, areToldOfAfterAHotkeyWasHeld) {
  const auto token = watch();
  backend.registerHotKey(7, cmdKey | shiftKey, 1);
  settle(*backend.connection);
  person.press(keySuper);
  person.press(keyShift);
  person.press(keyX);
  ASSERT_TRUE(waitUntil([&] { return backend.presses.size() == 1; }));
  EXPECT_TRUE(hearsClick());
  for (const auto key : {keyX, keyShift, keySuper}) person.release(key);
  ASSERT_TRUE(waitUntil([&] { return !backend.heldKeys.isGuarding(); }));
  EXPECT_TRUE(hearsClick());
}

TEST_F(PointerPressesTest, mayBeCancelledWhenNobodyTellsThemAnyMore) {
  std::optional<PointerPresses> gone{*backend.connection};
  auto token = gone->subscribe([] {});
  gone.reset();
  token.cancel();
  EXPECT_FALSE(hearsClick());
}

}  // namespace
}  // namespace tavelle::x11::tests
