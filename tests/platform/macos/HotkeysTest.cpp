#include "hotkeys/HotkeyManager.h"
#include "tests/platform/macos/MacFixture.h"

namespace tavelle::tests {
namespace {

using testing::ElementsAre;

class MacHotkeys : public MacFixture {
 protected:
  RewriteProfile profile(std::uint32_t keyCode, std::uint32_t modifiers) {
    return {UUID::random(), "a profile", keyCode, modifiers, "prompt"};
  }

  Platform::Use use{platform};
  HotkeyManager& manager = HotkeyManager::shared();
};

TEST_F(MacHotkeys, areRegisteredUnderTheApplicationsTargetAndSignature) {
  manager.registerAll({profile(15, cmdKey | shiftKey), profile(49, optionKey | controlKey)});
  EXPECT_THAT(calls(), ElementsAre("InstallEventHandler(application target, a handler, 1, keyb 5, no user data)",
                                   "RegisterEventHotKey(15, 0x300, TVLE 1, application target, 0)",
                                   "RegisterEventHotKey(49, 0x1800, TVLE 2, application target, 0)"));
}

TEST_F(MacHotkeys, areTakenBackByTheReferencesThatTheyWereGiven) {
  system().statusesOfRegistering = {noErr, -9878, noErr};
  manager.registerAll({profile(15, cmdKey), profile(16, cmdKey), profile(17, cmdKey)});
  calls();
  manager.unregisterAll();
  EXPECT_THAT(calls(), testing::UnorderedElementsAre("UnregisterEventHotKey(1)", "UnregisterEventHotKey(3)"));
}

TEST_F(MacHotkeys, installTheHandlerAgainOnlyWhereItCouldNotBeInstalled) {
  system().statusOfInstalling = -50;
  manager.registerAll({});
  system().statusOfInstalling = noErr;
  manager.registerAll({});
  manager.registerAll({});
  EXPECT_THAT(calls("InstallEventHandler"), testing::SizeIs(2));
}

TEST_F(MacHotkeys, tellTheirNumberWhenPressed) {
  const auto second = profile(16, cmdKey);
  manager.registerAll({profile(15, cmdKey), second});
  std::vector<UUID> pressed;
  manager.onProfileHotkeyPressed = [&](UUID id) { pressed.push_back(id); };
  calls();
  EXPECT_EQ(system().press(2), noErr);
  EXPECT_THAT(calls(), ElementsAre("GetEventParameter(the event, ----, hkid, null, 8, null)"));
  EXPECT_TRUE(pressed.empty());
  platform.loop.runUntilIdle();
  EXPECT_THAT(pressed, ElementsAre(second.id));
}

TEST_F(MacHotkeys, passOnTheStatusOfANumberThatCannotBeRead) {
  manager.registerAll({profile(15, cmdKey)});
  system().statusOfReading = eventParameterNotFoundErr;
  EXPECT_EQ(system().press(1), eventParameterNotFoundErr);
  EXPECT_EQ(system().handler(nullptr, nullptr, nullptr), eventNotHandledErr);
}

}  // namespace
}  // namespace tavelle::tests
