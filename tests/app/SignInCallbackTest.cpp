#include "account/TavelleAccountManager.h"
#include "tests/app/AppFixture.h"

#include <string>

namespace tavelle::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Key;
using testing::Pair;

class SignInCallback : public AppFixture {
 protected:
  const std::optional<std::string>& token() const { return TavelleAccountManager::shared().cachedToken(); }

  // One run from the hotkey to its last notification, with the hosted provider and this answer.
  std::string lastWordAnswered(int status, const std::string& body) {
    startRun();
    platform.network.answer(status, body);
    platform.loop.runToEnd();
    return lastWord();
  }

  // A run whose request is in flight.
  void startRun() {
    SettingsManager::shared().setProvider(LLMProvider::tavelle);
    platform.keys.onCopy = [this] { platform.pasteboard.contents = {{pasteboardTypeString, "selected"}}; };
    app->rewordAction();
    platform.loop.advance(std::chrono::milliseconds{150});
  }

  std::string lastWord() const { return platform.notifications.requests.back().content.body; }
};

TEST_F(SignInCallback, isListenedToBeforeTheLaunchIsDone) {
  platform.app.setDelegate(app);
  app->applicationWillFinishLaunching();
  EXPECT_THAT(platform.appleEvents.handlers, ElementsAre(Key(Pair(0x4755524C, 0x4755524C))));
  platform.appleEvents.getURL("tavelle://auth?token=abc");
  EXPECT_EQ(token(), "abc");
}

TEST_F(SignInCallback, reachesTheAccountSessionWithTheWholeURL) {
  launch();
  platform.appleEvents.getURL("tavelle://auth/any/path?a=b&token=abc%20d#fragment");
  EXPECT_EQ(token(), "abc d");
  EXPECT_THAT(platform.secrets.items, ElementsAre(Pair(Pair("app.tavelle.Tavelle", "tavelle_auth_token"), "abc d")));
}

TEST_F(SignInCallback, ignoresOtherSchemesAndHosts) {
  launch();
  for (const char* url :
       {"Tavelle://auth?token=abc", "TAVELLE://auth?token=abc", "https://auth?token=abc", "tavelles://auth?token=abc",
        "//auth?token=abc", "auth?token=abc", "tavelle://Auth?token=abc", "tavelle://other?token=abc",
        "tavelle://auth.host?token=abc", "tavelle://?token=abc", "tavelle:///auth?token=abc", "tavelle:auth?token=abc",
        "tavelle:/auth?token=abc", "tavelle:?token=abc"}) {
    platform.appleEvents.getURL(url);
    EXPECT_EQ(token(), std::nullopt) << url;
  }
  EXPECT_THAT(platform.secrets.items, IsEmpty());
}

TEST_F(SignInCallback, ignoresWhatIsNoURL) {
  launch();
  for (const char* url : {"", " ", "tavelle://auth?token=a b", "tavelle://auth?token=%", "tavelle://auth?token=%zz",
                          "tavelle://auth?token=\xC3\xA9", "tavelle://au th?token=abc", "tavelle://auth?token=<abc>",
                          "\ntavelle://auth?token=abc", "tavelle://auth?token=abc\n", "tavelle://[auth?token=abc"}) {
    platform.appleEvents.getURL(url);
    EXPECT_EQ(token(), std::nullopt) << url;
  }
}

TEST_F(SignInCallback, takesTheHostAsItReads) {
  launch();
  for (const char* url :
       {"tavelle://auth?token=abc", "tavelle://%61uth?token=abc", "tavelle://user@auth:80?token=abc"}) {
    TavelleAccountManager::shared().signOut();
    platform.appleEvents.getURL(url);
    EXPECT_EQ(token(), "abc") << url;
  }
}

TEST_F(SignInCallback, withoutATokenChangesNothing) {
  launch();
  platform.appleEvents.getURL("tavelle://auth?token=abc");
  for (const char* url : {"tavelle://auth", "tavelle://auth?", "tavelle://auth?Token=def", "tavelle://auth?token"}) {
    platform.appleEvents.getURL(url);
    EXPECT_EQ(token(), "abc") << url;
  }
}

TEST_F(SignInCallback, ignoresAnEventWithoutALink) {
  launch();
  platform.appleEvents.send({});
  platform.appleEvents.send({.parameters = {{keyDirectObject, {}}}});
  platform.appleEvents.send({.parameters = {{kAEGetURL, {.stringValue = "tavelle://auth?token=abc"}}}});
  EXPECT_EQ(token(), std::nullopt);
}

TEST_F(SignInCallback, comesTenThousandTimesInARowAndTheLastHolds) {
  launch();
  for (int number = 1; number <= 10'000; ++number) {
    platform.appleEvents.getURL("tavelle://auth?token=" + std::to_string(number));
    platform.appleEvents.getURL("tavelle://other?token=" + std::to_string(number));
  }
  EXPECT_EQ(token(), "10000");
  EXPECT_EQ(platform.secrets.items.size(), 1);
}

TEST_F(SignInCallback, tellsThePersonNothing) {
  launch();
  platform.appleEvents.getURL("tavelle://auth?token=abc");
  platform.appleEvents.getURL("tavelle://other?token=abc");
  EXPECT_THAT(platform.notifications.requests, IsEmpty());
}

TEST_F(SignInCallback, isNobodysOnceTheDelegateIsGone) {
  launch();
  app.reset();
  platform.appleEvents.getURL("tavelle://auth?token=abc");
  EXPECT_EQ(token(), std::nullopt);
}

TEST_F(SignInCallback, letsTheHostedProviderReword) {
  launch();
  EXPECT_EQ(lastWordAnswered(200, R"({"result":"unused"})"), "Please sign in to your Tavelle account in Settings.");
  EXPECT_THAT(platform.network.requests, IsEmpty());
  platform.network.answers.clear();

  platform.appleEvents.getURL("tavelle://auth?token=abc");
  EXPECT_EQ(lastWordAnswered(200, R"({"result":"reworded"})"), "Done!");
  EXPECT_EQ(platform.network.requests.at(0).headers.at(1).second, "Bearer abc");
}

TEST_F(SignInCallback, isAskedForAgainByA401WhileThePersonStaysSignedIn) {
  launch();
  platform.appleEvents.getURL("tavelle://auth?token=abc");
  EXPECT_EQ(lastWordAnswered(401, "expired"), "Please sign in to your Tavelle account in Settings.");
  EXPECT_TRUE(TavelleAccountManager::shared().isSignedIn());
  EXPECT_EQ(token(), "abc");

  platform.appleEvents.getURL("tavelle://auth?token=def");
  EXPECT_EQ(lastWordAnswered(200, R"({"result":"reworded"})"), "Done!");
  EXPECT_EQ(platform.network.requests.at(1).headers.at(1).second, "Bearer def");
}

TEST_F(SignInCallback, duringARunLeavesTheRunAsItWas) {
  launch();
  platform.appleEvents.getURL("tavelle://auth?token=abc");
  startRun();
  platform.appleEvents.getURL("tavelle://auth?token=def");
  platform.network.answer(200, R"({"result":"reworded"})");
  platform.loop.runToEnd();
  EXPECT_EQ(lastWord(), "Done!");
  ASSERT_EQ(platform.network.requests.size(), 1);
  EXPECT_EQ(platform.network.requests[0].headers.at(1).second, "Bearer abc");
  EXPECT_EQ(token(), "def");
}

TEST_F(SignInCallback, andSignOutDuringARunLeaveTheRunAsItWas) {
  launch();
  platform.appleEvents.getURL("tavelle://auth?token=abc");
  startRun();
  TavelleAccountManager::shared().signOut();
  platform.network.answer(200, R"({"result":"reworded"})");
  platform.loop.runToEnd();
  EXPECT_EQ(lastWord(), "Done!");
  EXPECT_EQ(lastWordAnswered(200, ""), "Please sign in to your Tavelle account in Settings.") << "the next run";
}

}  // namespace
}  // namespace tavelle::tests
