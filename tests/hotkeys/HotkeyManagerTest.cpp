#include "hotkeys/HotkeyManager.h"

#include "platform/fake/FakePlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tavelle::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Key;
using testing::Pair;
using testing::SizeIs;

RewriteProfile profileWithKey(std::uint32_t keyCode, std::string name = "Arbitrary") {
  return {.id = UUID::random(), .name = std::move(name), .keyCode = keyCode, .modifiers = 768, .systemPrompt = {}};
}

class HotkeyManagerTest : public testing::Test {
 protected:
  HotkeyManagerTest() {
    hotkeys.onProfileHotkeyPressed = [this](UUID id) { pressed.push_back(id); };
  }

  FakePlatform platform;
  Platform::Use use{platform};
  HotkeyManager& hotkeys = HotkeyManager::shared();
  std::vector<UUID> pressed;
};

TEST_F(HotkeyManagerTest, registersEachProfilesKeyAsItIsStored) {
  hotkeys.registerAll({profileWithKey(15), profileWithKey(8)});
  EXPECT_THAT(platform.hotKeys.registered(),
              ElementsAre(Pair(1, FakeCarbonEvents::HotKey{15, 768, {0x54564C45, 1}, 0}),
                          Pair(2, FakeCarbonEvents::HotKey{8, 768, {0x54564C45, 2}, 0})));
  EXPECT_THAT(hotkeys.registeredHotkeys(), ElementsAre(Key(1), Key(2)));
}

TEST_F(HotkeyManagerTest, givesANumberToAKeyThatCannotBeHadAndGoesOn) {
  platform.hotKeys.taken = {2};
  testing::internal::CaptureStdout();
  hotkeys.registerAll({profileWithKey(1), profileWithKey(2, "Middle 'one'"), profileWithKey(3)});
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "Failed to register hotkey for profile 'Middle 'one'': -9878\n");
  EXPECT_THAT(hotkeys.registeredHotkeys(), ElementsAre(Key(1), Key(3)));
}

TEST_F(HotkeyManagerTest, countsARegistrationWithoutAReferenceAsFailed) {
  platform.hotKeys.withoutReference = {1};
  testing::internal::CaptureStdout();
  hotkeys.registerAll({profileWithKey(1, "First"), profileWithKey(2)});
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "Failed to register hotkey for profile 'First': 0\n");
  EXPECT_THAT(hotkeys.registeredHotkeys(), ElementsAre(Key(2)));
}

TEST_F(HotkeyManagerTest, givesNoNumberToAProfileWithoutAKey) {
  const auto last = profileWithKey(3);
  hotkeys.registerAll({profileWithKey(1), profileWithKey(0), last});
  EXPECT_THAT(hotkeys.registeredHotkeys(), ElementsAre(Key(1), Key(2)));
  EXPECT_EQ(hotkeys.registeredHotkeys().at(2).profileID, last.id);
}

TEST_F(HotkeyManagerTest, removesEveryRegistrationBeforeItMakesNewOnesFromNumberOne) {
  hotkeys.registerAll({profileWithKey(1), profileWithKey(2)});
  platform.log.take();
  hotkeys.registerAll({profileWithKey(2)});
  EXPECT_THAT(platform.log.take(), ElementsAre("unregistered 1", "unregistered 2", "registered 1"));
  EXPECT_THAT(platform.hotKeys.registered(), ElementsAre(Key(1)));
}

TEST_F(HotkeyManagerTest, keepsTheHandlerWhenTheListIsEmpty) {
  hotkeys.registerAll({profileWithKey(1)});
  hotkeys.registerAll({});
  EXPECT_THAT(hotkeys.registeredHotkeys(), IsEmpty());
  EXPECT_THAT(platform.hotKeys.registered(), IsEmpty());
  EXPECT_EQ(platform.hotKeys.installedHandlers, 1);
}

TEST_F(HotkeyManagerTest, unregistersAll) {
  hotkeys.registerAll({profileWithKey(1), profileWithKey(2)});
  hotkeys.unregisterAll();
  EXPECT_THAT(platform.hotKeys.registered(), IsEmpty());
  EXPECT_THAT(hotkeys.registeredHotkeys(), IsEmpty());
}

TEST_F(HotkeyManagerTest, installsOneHandlerForPressesWithoutUserData) {
  hotkeys.registerAll({});
  hotkeys.registerAll({});
  EXPECT_EQ(platform.hotKeys.installedHandlers, 1);
  EXPECT_EQ(platform.hotKeys.handledType.eventClass, 0x6B657962);
  EXPECT_EQ(platform.hotKeys.handledType.eventKind, 5);
  EXPECT_EQ(platform.hotKeys.handlerUserData, nullptr);
}

TEST_F(HotkeyManagerTest, saysWhenTheHandlerCannotBeInstalledAndTriesAgainNextTime) {
  platform.hotKeys.installStatus = -50;
  testing::internal::CaptureStdout();
  hotkeys.registerAll({});
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "Failed to install event handler: -50\n");
  platform.hotKeys.installStatus = noErr;
  hotkeys.registerAll({});
  EXPECT_EQ(platform.hotKeys.installedHandlers, 1);
}

TEST_F(HotkeyManagerTest, reportsAPressAsItsProfileOnALaterTurn) {
  const auto first = profileWithKey(1);
  const auto second = profileWithKey(2);
  hotkeys.registerAll({first, second});
  EXPECT_EQ(platform.hotKeys.press(2), noErr);
  EXPECT_THAT(pressed, IsEmpty());
  platform.loop.runUntilIdle();
  EXPECT_THAT(pressed, ElementsAre(second.id));
}

TEST_F(HotkeyManagerTest, goesByTheNumberOfAPressWhateverItsSignature) {
  const auto profile = profileWithKey(1);
  hotkeys.registerAll({profile});
  platform.hotKeys.press(EventHotKeyID{.signature = 0x41424344, .id = 1});
  platform.loop.runUntilIdle();
  EXPECT_THAT(pressed, ElementsAre(profile.id));
}

TEST_F(HotkeyManagerTest, dropsAPressWhoseNumberIsRegisteredNoMore) {
  hotkeys.registerAll({profileWithKey(1), profileWithKey(2)});
  platform.hotKeys.press(2);
  hotkeys.registerAll({profileWithKey(1)});
  platform.loop.runUntilIdle();
  EXPECT_THAT(pressed, IsEmpty());
}

TEST_F(HotkeyManagerTest, takesAPressWithNobodyToTell) {
  hotkeys.onProfileHotkeyPressed = nullptr;
  hotkeys.registerAll({profileWithKey(1)});
  hotkeys.handleHotkeyEvent(1);
  EXPECT_THAT(hotkeys.registeredHotkeys(), SizeIs(1));
}

TEST_F(HotkeyManagerTest, answersTheSystemWithTheStatusOfAnEventThatItCannotRead) {
  hotkeys.registerAll({profileWithKey(1)});
  EXPECT_EQ(platform.hotKeys.callHandlerWithoutEvent(), -9874);
  platform.hotKeys.parameterStatus = eventParameterNotFoundErr;
  EXPECT_EQ(platform.hotKeys.press(1), eventParameterNotFoundErr);
  platform.loop.runUntilIdle();
  EXPECT_THAT(pressed, IsEmpty());
}

}  // namespace
}  // namespace tavelle::tests
