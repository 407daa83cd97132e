#include "tests/app/AppFixture.h"

#include <string>
#include <vector>

namespace tavelle::tests {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Pair;

// A person with a rich clipboard, a selection in some application, and a server that answers.
class RewordPipelineTest : public AppFixture {
 protected:
  RewordPipelineTest() {
    platform.pasteboard.contents = before;
    platform.keys.onCopy = [this] {
      if (selection) platform.pasteboard.contents = {{pasteboardTypeString, *selection}};
    };
    platform.keys.onPaste = [this] {
      for (const auto& [type, data] : platform.pasteboard.contents) {
        if (type == pasteboardTypeString) selection = data;
      }
    };
    launch();
    SettingsManager::shared().setProvider(LLMProvider::custom);
    SettingsManager::shared().setBaseURL("http://host/v1");
    SettingsManager::shared().setModel("arbitrary-model");
    platform.log.take();
  }

  // A run that a test left in progress ends here: its coroutines hold what the application is made of.
  void TearDown() override {
    platform.loop.runToEnd();
    while (!platform.network.inFlight.empty()) {
      platform.network.fail({URLError::Code::cancelled, "cancelled"});
      platform.loop.runToEnd();
    }
  }

  const RewriteProfile& profile() { return SettingsManager::shared().profiles().front(); }

  void answerWith(const std::string& content) {
    platform.network.answer(200, encodeJSON({{"choices", {{{"message", {{"content", content}}}}}}}));
  }

  // One whole run, and what happened in it.
  std::vector<std::string> run() {
    app->performReword(profile().id);
    platform.loop.runToEnd();
    return platform.log.take();
  }

  JSON requestBody() { return decodeJSON(platform.network.requests.back().body); }

  const FakePasteboard::Contents before{{"text/html", "<b>mine</b>"}, {"text/plain", "mine"}};
  std::optional<std::string> selection = "helo wrld";
};

TEST_F(RewordPipelineTest, replacesTheSelectionAndBringsThePasteboardBack) {
  answerWith("Hello, world.");
  EXPECT_THAT(run(), ElementsAre("saved", "cleared", "copied", "waited 150", "read", "notified Rewriting...", "cleared",
                                 "wrote 'Hello, world.'", "pasted", "waited 150", "cleared", "set text/html",
                                 "set text/plain", "notified Done!"));
  EXPECT_EQ(selection, "Hello, world.");
  EXPECT_EQ(platform.pasteboard.contents, before);
  EXPECT_FALSE(app->isProcessing());
}

TEST_F(RewordPipelineTest, postsCommandCAndCommandVAsTheKeyboardWould) {
  answerWith("x");
  run();
  const auto stroke = [](std::uint16_t keyCode, bool isDown) {
    return FakeQuartzEvents::Posted{EventTapLocation::hidEventTap, EventSourceStateID::hidSystemState, keyCode, isDown,
                                    0x100000};
  };
  EXPECT_THAT(platform.keys.posted, ElementsAre(stroke(8, true), stroke(8, false), stroke(9, true), stroke(9, false)));
}

TEST_F(RewordPipelineTest, sendsEveryNotificationUnderTheProgramsName) {
  answerWith("x");
  run();
  ASSERT_EQ(platform.notifications.requests.size(), 2);
  for (const auto& request : platform.notifications.requests) EXPECT_EQ(request.content.title, "Tavelle");
}

TEST_F(RewordPipelineTest, startsFromTheProfilesHotkey) {
  answerWith("x");
  platform.hotKeys.press(1);
  platform.loop.runToEnd();
  EXPECT_EQ(selection, "x");
}

TEST_F(RewordPipelineTest, returnsBeforeTheRunBegins) {
  app->performReword(profile().id);
  EXPECT_TRUE(app->isProcessing());
  EXPECT_THAT(platform.log.take(), IsEmpty());
}

TEST_F(RewordPipelineTest, ignoresASecondPressWhileARunIsInProgress) {
  app->performReword(profile().id);
  platform.loop.advance(150ms);
  app->performReword(profile().id);
  platform.hotKeys.press(1);
  answerWith("x");
  platform.loop.runToEnd();
  EXPECT_EQ(platform.network.requests.size(), 1);
  EXPECT_EQ(platform.notifications.requests.size(), 2);
  EXPECT_EQ(selection, "x");
  EXPECT_FALSE(app->isProcessing());
}

TEST_F(RewordPipelineTest, takesTheNextPressAfterARun) {
  answerWith("x");
  run();
  answerWith("y");
  run();
  EXPECT_EQ(selection, "y");
}

TEST_F(RewordPipelineTest, asksForAccessibilityAndTouchesNothingWithoutIt) {
  platform.access.trusted = false;
  EXPECT_THAT(run(), ElementsAre("notified Accessibility permission required. Please grant access in System Settings.",
                                 "asked for accessibility"));
  EXPECT_THAT(platform.access.prompts, ElementsAre(ElementsAre(Pair("AXTrustedCheckOptionPrompt", true))));
  EXPECT_THAT(platform.keys.posted, IsEmpty());
  EXPECT_EQ(platform.pasteboard.contents, before);
  EXPECT_FALSE(app->isProcessing());
}

TEST_F(RewordPipelineTest, doesNotPromptWhereAccessibilityWasJustGranted) {
  platform.access.nextAnswers = {false, true};
  EXPECT_THAT(run(),
              ElementsAre("notified Accessibility permission required. Please grant access in System Settings."));
  EXPECT_FALSE(app->isProcessing());
}

TEST_F(RewordPipelineTest, doesNothingForAProfileThatIsGone) {
  app->performReword(UUID::random());
  EXPECT_FALSE(app->isProcessing());
  platform.loop.runToEnd();
  EXPECT_THAT(platform.log.take(), IsEmpty());
}

TEST_F(RewordPipelineTest, saysThatNothingIsSelectedAndBringsThePasteboardBack) {
  selection.reset();
  EXPECT_THAT(run(), ElementsAre("saved", "cleared", "copied", "waited 150", "read", "cleared", "set text/html",
                                 "set text/plain", "notified No text selected."));
  EXPECT_EQ(platform.pasteboard.contents, before);
  EXPECT_FALSE(app->isProcessing());
}

TEST_F(RewordPipelineTest, takesAnEmptyTextForNoSelection) {
  selection = "";
  EXPECT_EQ(run().back(), "notified No text selected.");
  EXPECT_THAT(platform.network.requests, IsEmpty());
}

TEST_F(RewordPipelineTest, sendsASelectionOfBlanks) {
  selection = "   ";
  answerWith("x");
  EXPECT_EQ(run().back(), "notified Done!");
  EXPECT_EQ(requestBody()["messages"][1]["content"], "   ");
}

TEST_F(RewordPipelineTest, sendsTheSelectionExactlyAsItWasRead) {
  selection = " \ttext with \"quotes\"\r\n and 😀 ";
  answerWith("x");
  const std::string sent = *selection;
  run();
  EXPECT_EQ(requestBody()["messages"][1]["content"], sent);
}

TEST_F(RewordPipelineTest, pastesAnAnswerThatIsTheSameAsTheSelection) {
  answerWith("helo wrld");
  EXPECT_THAT(run(), IsSupersetOf({"wrote 'helo wrld'", "pasted", "notified Done!"}));
}

TEST_F(RewordPipelineTest, pastesAnEmptyAnswer) {
  answerWith("");
  EXPECT_THAT(run(), IsSupersetOf({"wrote ''", "pasted", "notified Done!"}));
  EXPECT_EQ(selection, "");
}

TEST_F(RewordPipelineTest, asksForASignInWithTheHostedServiceAndBringsThePasteboardBack) {
  SettingsManager::shared().setProvider(LLMProvider::tavelle);
  EXPECT_THAT(run(), ElementsAre("saved", "cleared", "copied", "waited 150", "read", "notified Rewriting...", "cleared",
                                 "set text/html", "set text/plain",
                                 "notified Please sign in to your Tavelle account in Settings."));
  EXPECT_EQ(platform.pasteboard.contents, before);
  EXPECT_FALSE(app->isProcessing());
}

TEST_F(RewordPipelineTest, tellsANetworkErrorInItsOwnWordsAndBringsThePasteboardBack) {
  platform.network.fail({URLError::Code::cannotConnectToHost, "Could not connect to the server."});
  EXPECT_THAT(run(),
              ElementsAre("saved", "cleared", "copied", "waited 150", "read", "notified Rewriting...", "cleared",
                          "set text/html", "set text/plain", "notified Error: Could not connect to the server."));
  EXPECT_EQ(platform.pasteboard.contents, before);
  EXPECT_EQ(selection, "helo wrld");
  EXPECT_FALSE(app->isProcessing());
}

TEST_F(RewordPipelineTest, tellsWhatTheServerSaid) {
  platform.network.answer(429, "slow down");
  EXPECT_EQ(run().back(), "notified Error: API error (429): slow down");
  platform.network.answer(200, "{}");
  EXPECT_EQ(run().back(), "notified Error: Failed to parse response");
  platform.network.answer(200, "<html>");
  EXPECT_EQ(run().back(), "notified Error: The data couldn’t be read because it isn’t in the correct format.");
  platform.network.answerWithoutHTTP();
  EXPECT_EQ(run().back(), "notified Error: Invalid response from server");
  EXPECT_FALSE(app->isProcessing());
}

TEST_F(RewordPipelineTest, leavesTheAnswerOnAPasteboardThatWasEmpty) {
  platform.pasteboard.contents.clear();
  answerWith("Hello, world.");
  EXPECT_THAT(run(), ElementsAre("saved", "cleared", "copied", "waited 150", "read", "notified Rewriting...", "cleared",
                                 "wrote 'Hello, world.'", "pasted", "waited 150", "notified Done!"));
  EXPECT_THAT(platform.pasteboard.contents, ElementsAre(Pair(pasteboardTypeString, "Hello, world.")));
}

TEST_F(RewordPipelineTest, leavesAnEmptyPasteboardEmptyWithNothingSelected) {
  platform.pasteboard.contents.clear();
  selection.reset();
  run();
  EXPECT_THAT(platform.pasteboard.contents, IsEmpty());
}

TEST_F(RewordPipelineTest, goesOnWhereNoKeyEventCanBeMade) {
  platform.keys.refusesEvents = true;
  EXPECT_THAT(run(), ElementsAre("saved", "cleared", "waited 150", "read", "cleared", "set text/html", "set text/plain",
                                 "notified No text selected."));
  EXPECT_THAT(platform.keys.posted, IsEmpty());
}

TEST_F(RewordPipelineTest, reportsDoneWhereThePasteCouldNotBeMade) {
  platform.keys.onCopy = [this] {
    platform.pasteboard.contents = {{pasteboardTypeString, "helo wrld"}};
    platform.keys.refusesEvents = true;
  };
  answerWith("x");
  EXPECT_EQ(run().back(), "notified Done!");
  EXPECT_EQ(platform.pasteboard.contents, before);
}

TEST_F(RewordPipelineTest, readsTheSettingsAfreshForEveryRun) {
  answerWith("x");
  run();
  auto& settings = SettingsManager::shared();
  settings.setModel("other-model");
  settings.setBaseURL("http://other/v1");
  settings.setTemperature(0);
  settings.setAPIKey("other key");
  answerWith("y");
  run();
  EXPECT_EQ(platform.network.requests.back().url.absoluteString(), "http://other/v1/chat/completions");
  EXPECT_THAT(platform.network.requests.back().headers, testing::Contains(Pair("Authorization", "Bearer other key")));
  EXPECT_EQ(requestBody()["model"], "other-model");
  EXPECT_EQ(requestBody()["temperature"], 0);
}

TEST_F(RewordPipelineTest, worksOnACopyOfTheProfileThatItFound) {
  app->performReword(profile().id);
  auto profiles = SettingsManager::shared().profiles();
  profiles[0].systemPrompt = "changed while running";
  SettingsManager::shared().setProfiles(profiles);
  answerWith("x");
  platform.loop.runToEnd();
  EXPECT_EQ(requestBody()["messages"][0]["content"], defaultSystemPrompt);
}

TEST_F(RewordPipelineTest, goesOnServingTheMainLoopWhileTheModelThinks) {
  app->performReword(profile().id);
  platform.loop.runToEnd();
  EXPECT_TRUE(app->isProcessing());
  EXPECT_TRUE(platform.loop.isIdle());
  EXPECT_EQ(platform.log.take().back(), "notified Rewriting...");
}

TEST_F(RewordPipelineTest, bringsThePasteboardBackWhenThePersonQuitsWhileTheModelThinks) {
  app->performReword(profile().id);
  platform.loop.runToEnd();
  platform.log.take();
  platform.statusBar.choose("Quit Tavelle");
  EXPECT_THAT(platform.log.take(), ElementsAre("cleared", "set text/html", "set text/plain", "terminated"));
  EXPECT_EQ(platform.pasteboard.contents, before);

  answerWith("too late");
  platform.loop.runToEnd();
  EXPECT_THAT(platform.log.take(), IsEmpty());
  EXPECT_EQ(platform.pasteboard.contents, before);
}

TEST_F(RewordPipelineTest, touchesNothingMoreOnceThePersonQuitsInAWait) {
  answerWith("x");
  app->performReword(profile().id);
  platform.loop.advance(149ms);
  platform.statusBar.choose("Quit Tavelle");
  EXPECT_EQ(platform.pasteboard.contents, before);
  platform.log.take();
  platform.loop.runToEnd();
  EXPECT_THAT(platform.log.take(), ElementsAre("waited 150"));
  EXPECT_EQ(platform.pasteboard.contents, before);
}

TEST_F(RewordPipelineTest, isReadyForTheNextRunBeforeItSaysThatNothingIsSelectedAndAfterItSaysDoneOrAnError) {
  std::vector<bool> processing;
  platform.notifications.onAdd = [&] { processing.push_back(app->isProcessing()); };
  answerWith("x");
  run();
  platform.network.answer(429, "slow down");
  run();
  selection.reset();
  run();
  EXPECT_THAT(processing, ElementsAre(true, true, true, true, false));
}

TEST_F(RewordPipelineTest, offersTheFirstProfileInTheMenu) {
  SettingsManager::shared().setProfiles(
      {{UUID::random(), "First", 1, 256, "first prompt"}, {UUID::random(), "Second", 2, 256, "second prompt"}});
  answerWith("x");
  platform.statusBar.choose("Reword Selection");
  platform.loop.runToEnd();
  EXPECT_EQ(requestBody()["messages"][0]["content"], "first prompt");
}

TEST_F(RewordPipelineTest, doesNothingFromTheMenuWithoutProfiles) {
  SettingsManager::shared().setProfiles({});
  platform.log.take();
  platform.statusBar.choose("Reword Selection");
  platform.loop.runToEnd();
  EXPECT_THAT(platform.log.take(), IsEmpty());
}

}  // namespace
}  // namespace tavelle::tests
