#include "tests/platform/macos/MacFixture.h"

#include "app/AppDelegate.h"
#include "settings/SettingsManager.h"

namespace tavelle::tests {
namespace {

using testing::ElementsAre;

using MacAccessibilityTest = MacFixture;

TEST_F(MacAccessibilityTest, isAskedForWithThePromptAtLaunch) {
  const Platform::Use use{platform};
  const auto app = std::make_shared<AppDelegate>(platform);
  system().trust = {false, false};
  app->applicationDidFinishLaunching();
  EXPECT_THAT(calls("AX"), ElementsAre("AXIsProcessTrusted()",
                                       "AXIsProcessTrustedWithOptions({\"AXTrustedCheckOptionPrompt\": true})"));
}

TEST_F(MacAccessibilityTest, isAskedTwiceBeforeThePromptAndNoKeyIsPosted) {
  const Platform::Use use{platform};
  const auto app = std::make_shared<AppDelegate>(platform);
  system().trust = {false, false, false};
  app->performReword(SettingsManager::shared().profiles().front().id);
  platform.loop.runUntilIdle();
  EXPECT_THAT(calls("AX"), ElementsAre("AXIsProcessTrusted()", "AXIsProcessTrusted()",
                                       "AXIsProcessTrustedWithOptions({\"AXTrustedCheckOptionPrompt\": true})"));
}

TEST_F(MacAccessibilityTest, passesEveryOptionOnAndTheAnswerBack) {
  system().trust = {false, true};
  EXPECT_FALSE(platform.accessibility().isProcessTrustedWithOptions({{"a", false}, {"b", true}}));
  EXPECT_TRUE(platform.accessibility().isProcessTrustedWithOptions({}));
  EXPECT_THAT(calls(), ElementsAre("AXIsProcessTrustedWithOptions({\"a\": false, \"b\": true})",
                                   "AXIsProcessTrustedWithOptions({})"));
}

}  // namespace
}  // namespace tavelle::tests
