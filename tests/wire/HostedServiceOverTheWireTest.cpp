#include "account/TavelleAccountManager.h"
#include "tests/wire/OverTheWire.h"

#include <string>
#include <utility>

namespace tavelle::tests {
namespace {

class HostedServiceOverTheWire : public OverTheWire {
 protected:
  HostedServiceOverTheWire() { platform.hostedServiceAt = standIn.root(); }

  std::string rewordHosted() { return reword(LLMProvider::tavelle, "any model", "http://elsewhere.invalid"); }

  // "sent", or the error's description.
  std::string requestLogin(std::string email) { return outcomeOf(sendLogin(std::move(email))); }

  StandIn standIn{{"--key", arbitraryKey}};

 private:
  static Task<std::string> sendLogin(std::string email) {
    co_await TavelleAccountManager::shared().requestLogin(email);
    co_return "sent";
  }
};

TEST_F(HostedServiceOverTheWire, getsTextPromptAndTemperatureWithTheToken) {
  signInWith(arbitraryKey);
  EXPECT_EQ(rewordHosted(), "I cannot come.");
  ASSERT_EQ(standIn.requests().size(), 1);
  EXPECT_EQ(standIn.requests()[0].header("authorization"), "Bearer made-up-key");
  EXPECT_EQ(standIn.requests()[0].body, R"({"systemPrompt":"Reword it.","temperature":0.7,"text":"i cant come"})");
}

TEST_F(HostedServiceOverTheWire, wantsASignInWhereItRefusesTheTokenAndKeepsTheSession) {
  signInWith("of yesterday");
  EXPECT_EQ(rewordHosted(), "Sign in to Tavelle required");
  EXPECT_EQ(standIn.requests().size(), 1);
  EXPECT_TRUE(TavelleAccountManager::shared().isSignedIn());
}

TEST_F(HostedServiceOverTheWire, isSentNothingWithoutAToken) {
  EXPECT_EQ(rewordHosted(), "Sign in to Tavelle required");
  EXPECT_EQ(standIn.requests().size(), 0);
}

TEST_F(HostedServiceOverTheWire, isSentATokenThatIsEmpty) {
  signInWith("");
  EXPECT_EQ(rewordHosted(), "Sign in to Tavelle required");
  EXPECT_EQ(standIn.requests().size(), 1);
}

TEST_F(HostedServiceOverTheWire, takesATokenOf16KB) {
  const std::string token(16384, 't');
  const StandIn patient{{"--key", token}};
  platform.hostedServiceAt = patient.root();
  signInWith(token);
  EXPECT_EQ(rewordHosted(), "I cannot come.");
}

TEST_F(HostedServiceOverTheWire, misbehavesByTheTokenToo) {
  signInWith("misbehave:status=500,body=oops");
  EXPECT_EQ(rewordHosted(), "API error (500): oops");
}

TEST_F(HostedServiceOverTheWire, mailsALinkToTheAddressAsItWasEntered) {
  EXPECT_EQ(requestLogin(" someone@example.org "), "sent");
  ASSERT_EQ(standIn.requests().size(), 1);
  EXPECT_EQ(standIn.requests()[0].method, "POST");
  EXPECT_EQ(standIn.requests()[0].path, "/auth/login");
  EXPECT_EQ(standIn.requests()[0].header("content-type"), "application/json");
  EXPECT_FALSE(standIn.requests()[0].hasHeader("authorization"));
  EXPECT_EQ(standIn.requests()[0].body, R"({"email":" someone@example.org "})");
}

TEST_F(HostedServiceOverTheWire, saysWhyItMailsNoLink) {
  EXPECT_EQ(requestLogin("nobody"), "Request failed: bad email");
  EXPECT_EQ(requestLogin("misbehave:status=201,body=made"), "Request failed: made");
  EXPECT_EQ(requestLogin("misbehave:status=500,invalid-utf8"), "Request failed: Unknown error");
  EXPECT_FALSE(TavelleAccountManager::shared().isLoading());
}

TEST_F(HostedServiceOverTheWire, passesOnWhatTheTransportSaysOfALoginRequest) {
  EXPECT_EQ(requestLogin("misbehave:truncate,body=half"), "The network connection was lost.");
  platform.hostedServiceAt = "http://127.0.0.1:1";
  EXPECT_EQ(requestLogin("someone@example.org"), "Could not connect to the server.");
  EXPECT_FALSE(TavelleAccountManager::shared().isLoading());
}

}  // namespace
}  // namespace tavelle::tests
