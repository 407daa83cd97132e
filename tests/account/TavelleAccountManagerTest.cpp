#include "account/TavelleAccountManager.h"

#include "account/TavelleAccountError.h"
#include "llm/JSON.h"
#include "llm/LLMProvider.h"
#include "tests/account/AccountFixture.h"

#include <chrono>
#include <vector>

namespace tavelle::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr auto someonesToken = "header.eyJlbWFpbCI6InNvbWVvbmUifQ.signature";

class TavelleAccountManagerTest : public AccountFixture {
 protected:
  void requestLogin(std::string email = "someone@host") {
    await(platform.loop, account.requestLogin(std::move(email)));
  }

  // The description of the error with which the request ends.
  std::string refusalOf(std::string email = "someone@host") {
    try {
      requestLogin(std::move(email));
    } catch (const std::exception& error) {
      return localizedDescription(error);
    }
    return "nothing was thrown";
  }

  void expectSignedOut() const {
    EXPECT_FALSE(account.isSignedIn());
    EXPECT_EQ(account.cachedToken(), std::nullopt);
    EXPECT_EQ(account.email(), std::nullopt);
  }

  FakeURLSession::Exchange& network = platform.sharedNetwork;
};

TEST_F(TavelleAccountManagerTest, startsSignedOutWithoutAToken) {
  expectSignedOut();
  EXPECT_FALSE(account.isLoading());
  EXPECT_EQ(account.errorMessage(), std::nullopt);
}

TEST_F(TavelleAccountManagerTest, startsSignedInWithTheTokenOfTheKeychain) {
  platform.secrets.items[item] = someonesToken;
  const auto started = makeAccount();
  EXPECT_TRUE(started.isSignedIn());
  EXPECT_EQ(started.cachedToken(), someonesToken);
  EXPECT_EQ(started.email(), "someone");
}

TEST_F(TavelleAccountManagerTest, startsSignedOutWhereTheKeychainRefuses) {
  platform.secrets.items[item] = someonesToken;
  platform.secrets.copyStatus = errSecInteractionNotAllowed;
  EXPECT_FALSE(makeAccount().isSignedIn());
}

TEST_F(TavelleAccountManagerTest, asksTheHostedServiceForALinkOverTheSharedSession) {
  network.answer(200, "whatever");
  requestLogin();
  ASSERT_EQ(network.requests.size(), 1);
  const URLRequest& request = network.requests[0];
  EXPECT_EQ(request.url.absoluteString(), std::string{hostedServiceBaseURL} + "/auth/login");
  EXPECT_EQ(request.method, "POST");
  EXPECT_THAT(request.headers, ElementsAre(Pair("Content-Type", "application/json")));
  EXPECT_EQ(request.timeoutInterval, std::chrono::seconds{60});
  EXPECT_EQ(request.body, R"({"email":"someone@host"})");
  EXPECT_THAT(platform.network.requests, IsEmpty());
  expectSignedOut();
}

TEST_F(TavelleAccountManagerTest, sendsTheAddressAsEntered) {
  network.answer(200, "");
  requestLogin("  no \"address\"\né ");
  EXPECT_EQ(decodeJSON(network.requests[0].body), (JSON{{"email", "  no \"address\"\né "}}));
  network.answer(200, "");
  requestLogin("");
  EXPECT_EQ(network.requests[1].body, R"({"email":""})");
}

TEST_F(TavelleAccountManagerTest, isLoadingWhileARequestIsInFlight) {
  platform.loop.start(account.requestLogin("someone@host"));
  platform.loop.runUntilIdle();
  EXPECT_TRUE(account.isLoading());
  network.answer(200, "");
  platform.loop.runUntilIdle();
  EXPECT_FALSE(account.isLoading());
}

TEST_F(TavelleAccountManagerTest, sendsBothOfTwoRequestsAtOnceAndEndsNotLoading) {
  platform.loop.start(account.requestLogin("a"));
  platform.loop.start(account.requestLogin("b"));
  platform.loop.runUntilIdle();
  EXPECT_EQ(network.requests.size(), 2);
  network.answer(200, "");
  network.answer(200, "");
  platform.loop.runUntilIdle();
  EXPECT_FALSE(account.isLoading());
}

TEST_F(TavelleAccountManagerTest, tellsWhatARefusalSaid) {
  network.answer(400, "bad email");
  EXPECT_EQ(refusalOf(), "Request failed: bad email");
  EXPECT_FALSE(account.isLoading());
}

TEST_F(TavelleAccountManagerTest, takesNoStatusBut200ForSuccess) {
  for (const int status : {201, 204, 302, 401, 500}) {
    network.answer(status, "");
    EXPECT_EQ(refusalOf(), "Request failed: ") << status;
  }
}

TEST_F(TavelleAccountManagerTest, doesNotShowARefusalThatIsNoText) {
  network.answer(500, "\xFF");
  EXPECT_EQ(refusalOf(), "Request failed: Unknown error");
}

TEST_F(TavelleAccountManagerTest, takesAnAnswerThatIsNotOfHTTPForARefusal) {
  network.answerWithoutHTTP();
  EXPECT_EQ(refusalOf(), "Request failed: ");
}

TEST_F(TavelleAccountManagerTest, passesATransportErrorOnAsItIs) {
  network.fail({URLError::Code::timedOut, "The request timed out."});
  EXPECT_THROW(requestLogin(), URLError);
  EXPECT_FALSE(account.isLoading());
  network.fail({URLError::Code::timedOut, "The request timed out."});
  EXPECT_EQ(refusalOf(), "The request timed out.");
}

TEST_F(TavelleAccountManagerTest, passesOnThatTheAddressCannotBeWrittenAsJSON) {
  EXPECT_THROW(requestLogin("\xFF"), JSONError);
  EXPECT_FALSE(account.isLoading());
  EXPECT_THAT(network.requests, IsEmpty());
}

TEST_F(TavelleAccountManagerTest, signsInWithTheTokenOfTheCallback) {
  open("tavelle://auth?token=" + std::string{someonesToken});
  EXPECT_TRUE(account.isSignedIn());
  EXPECT_EQ(account.cachedToken(), someonesToken);
  EXPECT_EQ(account.email(), "someone");
  EXPECT_EQ(storedToken(), someonesToken);
}

TEST_F(TavelleAccountManagerTest, takesTheFirstToken) {
  open("tavelle://auth?a=b&token=abc&token=def");
  EXPECT_EQ(storedToken(), "abc");
  EXPECT_EQ(account.cachedToken(), "abc");
}

TEST_F(TavelleAccountManagerTest, ignoresACallbackWithoutTheNameToken) {
  for (const char* url : {"tavelle://auth", "tavelle://auth?", "tavelle://auth?Token=abc", "tavelle://auth?tokens=abc",
                          "tavelle://auth?a&b=", "tavelle://auth#token=abc", "tavelle://auth/token=abc",
                          "tavelle://auth?%FF=abc", "tavelle://auth?&&="}) {
    open(url);
    expectSignedOut();
    EXPECT_EQ(storedToken(), std::nullopt) << url;
  }
}

TEST_F(TavelleAccountManagerTest, ignoresATokenWithoutAValue) {
  for (const char* url : {"tavelle://auth?token", "tavelle://auth?token&token=abc", "tavelle://auth?token=%FF"}) {
    open(url);
    expectSignedOut();
  }
}

TEST_F(TavelleAccountManagerTest, signsInWithAnEmptyToken) {
  open("tavelle://auth?token=");
  EXPECT_TRUE(account.isSignedIn());
  EXPECT_EQ(account.cachedToken(), "");
  EXPECT_EQ(account.email(), std::nullopt);
  EXPECT_EQ(storedToken(), "");
}

TEST_F(TavelleAccountManagerTest, readsATokenThatIsPercentEncoded) {
  open("tavelle://auth?%74oken=a%20b%26c+d%3D=e");
  EXPECT_EQ(account.cachedToken(), "a b&c+d==e");
}

TEST_F(TavelleAccountManagerTest, doesNotLookAtTheRestOfTheURL) {
  for (const char* url : {"other://elsewhere/path?token=abc", "?token=abc", "mailto:a@b?token=abc#fragment"}) {
    account.signOut();
    open(url);
    EXPECT_EQ(account.cachedToken(), "abc") << url;
  }
}

TEST_F(TavelleAccountManagerTest, takesATokenOf16KB) {
  const std::string token(16384, 'x');
  open("tavelle://auth?token=" + token);
  EXPECT_EQ(storedToken(), token);
}

TEST_F(TavelleAccountManagerTest, replacesTheSessionByALaterCallback) {
  open("tavelle://auth?token=" + std::string{someonesToken});
  open("tavelle://auth?token=opaque");
  EXPECT_EQ(account.cachedToken(), "opaque");
  EXPECT_EQ(account.email(), std::nullopt);
  EXPECT_THAT(platform.secrets.items, ElementsAre(Pair(item, "opaque")));
}

TEST_F(TavelleAccountManagerTest, keepsTheLastOfTenThousandCallbacks) {
  for (int number = 1; number <= 10'000; ++number) open("tavelle://auth?token=" + std::to_string(number));
  EXPECT_EQ(account.cachedToken(), "10000");
  EXPECT_THAT(platform.secrets.items, ElementsAre(Pair(item, "10000")));
}

TEST_F(TavelleAccountManagerTest, isSignedInForThisRunWhereTheKeychainRefuses) {
  platform.secrets.addStatus = errSecInteractionNotAllowed;
  open("tavelle://auth?token=" + std::string{someonesToken});
  EXPECT_TRUE(account.isSignedIn());
  EXPECT_EQ(account.cachedToken(), someonesToken);
  EXPECT_EQ(account.email(), "someone");
  EXPECT_FALSE(makeAccount().isSignedIn()) << "after a restart";
}

TEST_F(TavelleAccountManagerTest, forgetsTheSessionAtSignOut) {
  open("tavelle://auth?token=" + std::string{someonesToken});
  account.signOut();
  expectSignedOut();
  EXPECT_EQ(storedToken(), std::nullopt);
  EXPECT_FALSE(makeAccount().isSignedIn()) << "after a restart";
}

TEST_F(TavelleAccountManagerTest, signsOutOfARefusingKeychainForThisRun) {
  open("tavelle://auth?token=abc");
  platform.secrets.deleteStatus = errSecNotAvailable;
  account.signOut();
  expectSignedOut();
}

TEST_F(TavelleAccountManagerTest, canSignOutTwice) {
  account.signOut();
  account.signOut();
  expectSignedOut();
}

TEST_F(TavelleAccountManagerTest, tellsItsObserversBeforeEachChange) {
  std::vector<std::string> seen;
  const auto token = account.objectWillChange().subscribe([&] {
    seen.push_back(std::string{account.isSignedIn() ? "in" : "out"} + " " + account.email().value_or("-") +
                   (account.isLoading() ? " loading" : ""));
  });
  open("tavelle://auth?token=" + std::string{someonesToken});
  EXPECT_THAT(std::exchange(seen, {}), ElementsAre("out -", "in -"));
  network.answer(200, "");
  requestLogin();
  EXPECT_THAT(std::exchange(seen, {}), ElementsAre("in someone", "in someone loading"));
  account.signOut();
  EXPECT_THAT(std::exchange(seen, {}), ElementsAre("in someone", "out someone"));
}

TEST_F(TavelleAccountManagerTest, hasOneSharedInstanceThatLoadsItsTokenWhenFirstUsed) {
  const Platform::Use use{platform};
  platform.secrets.items[item] = someonesToken;
  EXPECT_TRUE(TavelleAccountManager::shared().isSignedIn());
  EXPECT_EQ(&TavelleAccountManager::shared(), &TavelleAccountManager::shared());
}

}  // namespace
}  // namespace tavelle::tests
