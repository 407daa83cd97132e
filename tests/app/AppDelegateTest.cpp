#include "app/AppDelegate.h"

#include "tests/app/AppFixture.h"

#include <string>
#include <utility>
#include <vector>

namespace tavelle::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class AppDelegateTest : public AppFixture {};

TEST_F(AppDelegateTest, putsASquareItemWithATemplateImageIntoTheMenuBar) {
  launch();
  EXPECT_THAT(platform.statusBar.lengths, ElementsAre(-2));
  EXPECT_EQ(platform.statusBar.image, platform.bundle.images.at("MenuBarIcon"));
  EXPECT_TRUE(platform.bundle.images.at("MenuBarIcon")->isTemplate);
}

TEST_F(AppDelegateTest, leavesTheItemWithoutAnImageThatIsMissing) {
  platform.bundle.images.clear();
  launch();
  EXPECT_EQ(platform.statusBar.image, nullptr);
  EXPECT_FALSE(platform.statusBar.menu.empty());
}

TEST_F(AppDelegateTest, putsNoImageOnAnItemWithoutAButton) {
  platform.statusBar.givesButton = false;
  launch();
  EXPECT_EQ(platform.statusBar.image, nullptr);
}

TEST_F(AppDelegateTest, offersItsMenuInOrder) {
  launch();
  std::vector<std::pair<std::string, std::string>> entries;
  for (const auto& item : platform.statusBar.menu) entries.emplace_back(item.title, item.keyEquivalent);
  EXPECT_THAT(entries, ElementsAre(Pair("Reword Selection", ""), Pair("", ""), Pair("Settings...", ","), Pair("", ""),
                                   Pair("Quit Tavelle", "q")));
}

TEST_F(AppDelegateTest, quitsFromItsMenu) {
  launch();
  platform.log.take();
  platform.statusBar.choose("Quit Tavelle");
  EXPECT_THAT(platform.log.take(), ElementsAre("terminated"));
}

TEST_F(AppDelegateTest, registersTheStoredHotkeysOnceAtLaunch) {
  launch();
  EXPECT_THAT(platform.log.take(), testing::Contains("registered 1").Times(1));
}

TEST_F(AppDelegateTest, launchesInOrder) {
  platform.access.trusted = false;
  launch();
  EXPECT_THAT(platform.log.take(), ElementsAre("made a status item", "set the menu", "registered 1",
                                               "asked for accessibility", "asked for notifications"));
}

TEST_F(AppDelegateTest, registersAllHotkeysAgainAtEachChangeOfTheProfiles) {
  launch();
  platform.log.take();
  auto profiles = SettingsManager::shared().profiles();
  profiles[0].keyCode = 8;
  SettingsManager::shared().setProfiles(profiles);
  EXPECT_THAT(platform.log.take(), ElementsAre("unregistered 1", "registered 1"));
  EXPECT_EQ(platform.hotKeys.registered().at(1).keyCode, 8);
}

TEST_F(AppDelegateTest, asksForAccessibilityAtLaunchWhereItIsMissing) {
  platform.access.trusted = false;
  launch();
  EXPECT_THAT(platform.access.prompts, ElementsAre(ElementsAre(Pair("AXTrustedCheckOptionPrompt", true))));
  EXPECT_THAT(platform.notifications.requests, IsEmpty());
}

TEST_F(AppDelegateTest, doesNotAskForAccessibilityThatItHas) {
  launch();
  EXPECT_THAT(platform.access.prompts, IsEmpty());
}

TEST_F(AppDelegateTest, asksToShowAlertsWithSound) {
  platform.notifications.granted = false;
  launch();
  EXPECT_THAT(platform.notifications.authorizations,
              ElementsAre(AuthorizationOptions::alert | AuthorizationOptions::sound));
}

TEST_F(AppDelegateTest, isHeldByNothingThatItSetUp) {
  launch();
  const std::weak_ptr<AppDelegate> weak = app;
  app.reset();
  EXPECT_TRUE(weak.expired());
  platform.hotKeys.press(1);
  SettingsManager::shared().setProfiles({});
  platform.loop.runUntilIdle();
  EXPECT_THAT(platform.keys.posted, IsEmpty());
}

TEST_F(AppDelegateTest, touchesNoSettingsBeforeItLaunches) {
  EXPECT_THAT(platform.defaults.writes, IsEmpty());
  launch();
  EXPECT_THAT(platform.defaults.writes, ElementsAre("rewriteProfiles"));
}

}  // namespace
}  // namespace tavelle::tests
