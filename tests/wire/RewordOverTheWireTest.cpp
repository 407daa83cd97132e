#include "app/AppDelegate.h"
#include "settings/SettingsManager.h"
#include "tests/platform/linux/MainLoop.h"
#include "tests/support/Environment.h"
#include "tests/support/StandIn.h"
#include "tests/wire/WiredPlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace tavelle::tests {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

class RewordOverTheWire : public testing::Test {
 protected:
  RewordOverTheWire() {
    platform.pasteboard.contents = before;
    platform.keys.onCopy = [this] { platform.pasteboard.contents = {{pasteboardTypeString, "i cant come tommorow"}}; };
    platform.keys.onPaste = [this] { pasted = platform.pasteboard.contents.at(0).second; };
    SettingsManager::shared().setProvider(LLMProvider::custom);
  }

  // One run against this base URL; the last notification.
  std::string lastWordFrom(const std::string& baseURL) {
    SettingsManager::shared().setBaseURL(baseURL);
    platform.notifications.requests.clear();
    app->performReword(SettingsManager::shared().profiles().front().id);
    EXPECT_TRUE(waitUntil([this] { return !app->isProcessing(); }));
    EXPECT_EQ(platform.pasteboard.contents, before) << "the clipboard is back";
    EXPECT_EQ(platform.notifications.requests.size(), 2);
    return platform.notifications.requests.back().content.body;
  }

  std::string lastWordFromOneThat(const std::string& behaviour) {
    return lastWordFrom(standIn.baseURLBehaving(behaviour));
  }

  const FakePasteboard::Contents before{{"text/html", "<b>mine</b>"}};
  StandIn standIn;
  WiredPlatform platform;
  Platform::Use use{platform};
  std::shared_ptr<AppDelegate> app = std::make_shared<AppDelegate>(platform);
  std::optional<std::string> pasted;
};

TEST_F(RewordOverTheWire, pastesWhatTheServerAnswered) {
  EXPECT_EQ(lastWordFrom(standIn.baseURL()), "Done!");
  ASSERT_TRUE(pasted);
  EXPECT_NE(*pasted, "i cant come tommorow");
  EXPECT_THAT(*pasted, StartsWith("I "));
}

TEST_F(RewordOverTheWire, sendsTheKeyOnlyToItsServer) {
  SettingsManager::shared().setAPIKey("made-up key");
  EXPECT_EQ(lastWordFrom(standIn.baseURL()), "Done!");
  EXPECT_EQ(standIn.requests().back().header("authorization"), "Bearer made-up key");
  EXPECT_EQ(standIn.requests().back().header("content-type"), "application/json");
}

TEST_F(RewordOverTheWire, tellsThatNobodyListens) {
  EXPECT_EQ(lastWordFrom("http://127.0.0.1:1/v1"), "Error: Could not connect to the server.");
}

TEST_F(RewordOverTheWire, tellsThatThereIsNoSuchHost) {
  const Environment resolver{quickResolver};
  EXPECT_EQ(lastWordFrom("http://nonexistent.invalid/v1"),
            "Error: A server with the specified hostname could not be found.");
}

TEST_F(RewordOverTheWire, tellsThatTheServerFellSilent) {
  platform.patience = std::chrono::seconds{1};
  EXPECT_EQ(lastWordFromOneThat("silence"), "Error: The request timed out.");
  EXPECT_EQ(lastWordFromOneThat("silence-after-head"), "Error: The request timed out.");
}

TEST_F(RewordOverTheWire, waitsForAServerThatKeepsSending) {
  platform.patience = std::chrono::seconds{1};
  EXPECT_EQ(lastWordFromOneThat("text=abc,trickle=0.01"), "Done!");
  EXPECT_EQ(pasted, "abc");
}

TEST_F(RewordOverTheWire, neverPastesAnAnswerThatWasCutShort) {
  EXPECT_EQ(lastWordFromOneThat("truncate"), "Error: The network connection was lost.");
  EXPECT_EQ(lastWordFromOneThat("chunked-cut=7"), "Error: The network connection was lost.");
  EXPECT_FALSE(pasted);
}

TEST_F(RewordOverTheWire, tellsWhatAServerSaysThatRefuses) {
  EXPECT_EQ(lastWordFromOneThat("status=429,body=%7B%22error%22%3A%22slow%20down%22%7D"),
            R"(Error: API error (429): {"error":"slow down"})");
  EXPECT_EQ(lastWordFromOneThat("status=401,body=no%20key"), "Error: API error (401): no key");
  EXPECT_THAT(lastWordFromOneThat("status=201"), StartsWith("Error: API error (201): "));
  EXPECT_EQ(lastWordFromOneThat("status=500,invalid-utf8"), "Error: API error (500): Unknown error");
}

TEST_F(RewordOverTheWire, tellsThatAnAnswerHasNoTextOrIsNoJSON) {
  EXPECT_EQ(lastWordFromOneThat("body=%7B%22choices%22%3A%5B%5D%7D"), "Error: Failed to parse response");
  EXPECT_THAT(lastWordFromOneThat("body=%3Chtml%3E"), HasSubstr("isn’t in the correct format"));
  EXPECT_THAT(lastWordFromOneThat("invalid-utf8"), HasSubstr("isn’t in the correct format"));
  EXPECT_FALSE(pasted);
}

TEST_F(RewordOverTheWire, pastesOddCharactersAndFiftyMegabytesWhole) {
  EXPECT_EQ(lastWordFromOneThat("odd-text"), "Done!");
  EXPECT_THAT(*pasted, HasSubstr("\""));
  EXPECT_NE(pasted->find('\0'), std::string::npos);
  EXPECT_EQ(lastWordFromOneThat("size=52428800"), "Done!");
  EXPECT_EQ(pasted->size(), 52428800);
}

TEST_F(RewordOverTheWire, readsChunkedAndCompressedAnswersThroughARedirect) {
  EXPECT_EQ(lastWordFromOneThat("redirect=307,text=abc,gzip,chunked=3"), "Done!");
  EXPECT_EQ(pasted, "abc");
}

TEST_F(RewordOverTheWire, saysThatAnEmptyBaseURLIsNoAddress) {
  EXPECT_EQ(lastWordFrom(""), "Error: unsupported URL");
}

}  // namespace
}  // namespace tavelle::tests
