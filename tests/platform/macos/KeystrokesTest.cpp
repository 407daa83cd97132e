#include "tests/platform/macos/MacFixture.h"

#include "app/AppDelegate.h"
#include "settings/SettingsManager.h"

namespace tavelle::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MacKeystrokes : public MacFixture {
 protected:
  // A run on an empty selection, which copies and pastes nothing.
  void reword() {
    app->performReword(SettingsManager::shared().profiles().front().id);
    platform.loop.runToEnd();
  }

  // A run on a selection, which the application copies once the keys are posted; the calls are those after that.
  void rewordSelection() {
    SettingsManager::shared().setProvider(LLMProvider::custom);
    SettingsManager::shared().setBaseURL("http://host/v1");
    app->performReword(SettingsManager::shared().profiles().front().id);
    platform.loop.runUntilIdle();
    calls();
    platform.pasteboard.contents = {{pasteboardTypeString, "helo wrld"}};
    platform.network.answer(200, encodeJSON({{"choices", {{{"message", {{"content", "Hello, world."}}}}}}}));
    platform.loop.runToEnd();
  }

  Platform::Use use{platform};
  std::shared_ptr<AppDelegate> app = std::make_shared<AppDelegate>(platform);
};

TEST_F(MacKeystrokes, areMadeByTheHardwaresSourceAndPostedToItsTapWithCommand) {
  reword();
  EXPECT_THAT(calls("CG"), ElementsAre("CGEventSourceCreate(1)", "CGEventCreateKeyboardEvent(source, 8, true)",
                                       "CGEventCreateKeyboardEvent(source, 8, false)",
                                       "CGEventSetFlags(key 8 down, 0x100000)", "CGEventSetFlags(key 8 up, 0x100000)",
                                       "CGEventPost(0, key 8 down)", "CGEventPost(0, key 8 up)"));
}

TEST_F(MacKeystrokes, pasteTheAnswerAsTheyCopiedTheText) {
  rewordSelection();
  EXPECT_THAT(calls("CG"), ElementsAre("CGEventSourceCreate(1)", "CGEventCreateKeyboardEvent(source, 9, true)",
                                       "CGEventCreateKeyboardEvent(source, 9, false)",
                                       "CGEventSetFlags(key 9 down, 0x100000)", "CGEventSetFlags(key 9 up, 0x100000)",
                                       "CGEventPost(0, key 9 down)", "CGEventPost(0, key 9 up)"));
}

TEST_F(MacKeystrokes, areMadeWithoutASourceWhereTheSystemGivesNone) {
  system().givesSources = false;
  reword();
  EXPECT_THAT(calls("CGEventCreateKeyboardEvent"),
              ElementsAre("CGEventCreateKeyboardEvent(null, 8, true)", "CGEventCreateKeyboardEvent(null, 8, false)"));
}

TEST_F(MacKeystrokes, areNotPostedWhereTheSystemGivesNoEvents) {
  system().givesEvents = false;
  reword();
  EXPECT_THAT(calls("CGEventSetFlags"), IsEmpty());
  EXPECT_THAT(calls("CGEventPost"), IsEmpty());
}

}  // namespace
}  // namespace tavelle::tests
