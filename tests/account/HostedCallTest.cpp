#include "account/TavelleAccountManager.h"
#include "tests/llm/LLMServiceFixture.h"

#include <chrono>
#include <vector>

namespace tavelle::tests {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr auto provider = LLMProvider::tavelle;

class HostedCall : public LLMServiceFixture {
 protected:
  HostedCall() { hostedToken = "arbitrary-token"; }
};

TEST_F(HostedCall, postsTextPromptAndTemperatureWithTheToken) {
  EXPECT_EQ(rewordAnswered(provider, R"({"result":"reworded"})"), "reworded");
  EXPECT_EQ(request().url.absoluteString(), std::string{hostedServiceBaseURL} + "/reword");
  EXPECT_EQ(request().method, "POST");
  EXPECT_EQ(request().timeoutInterval, std::chrono::seconds{60});
  EXPECT_THAT(request().headers,
              ElementsAre(Pair("Content-Type", "application/json"), Pair("Authorization", "Bearer arbitrary-token")));
  EXPECT_EQ(request().body, R"({"systemPrompt":"arbitrary prompt","temperature":0.7,"text":"arbitrary text"})");
}

TEST_F(HostedCall, ignoresModelBaseURLAndKeyOfTheSettings) {
  baseURL = "no URL at all";
  rewordAnswered(provider, R"({"result":"reworded"})");
  EXPECT_EQ(request().url.absoluteString(), std::string{hostedServiceBaseURL} + "/reword");
  EXPECT_FALSE(requestBody().contains("model"));
  for (const auto& [name, value] : request().headers) EXPECT_EQ(value.find(apiKey), std::string::npos) << name;
}

TEST_F(HostedCall, wantsASignInAndSendsNothingWithoutAToken) {
  hostedToken.reset();
  EXPECT_EQ(errorOf(provider, 200, ""), LLMError::authRequired());
  EXPECT_THAT(platform.network.requests, IsEmpty());
}

TEST_F(HostedCall, sendsATokenThatIsEmptyOrLong) {
  for (const auto& token : {std::string{}, std::string(16384, 'x')}) {
    hostedToken = token;
    rewordAnswered(provider, R"({"result":"reworded"})");
    EXPECT_EQ(request().headers[1].second, "Bearer " + token);
  }
}

TEST_F(HostedCall, wantsASignInAfterA401WhateverItSays) {
  EXPECT_EQ(errorOf(provider, 401, R"({"result":"x"})"), LLMError::authRequired());
}

TEST_F(HostedCall, makesAnErrorOfAnyOtherStatus) {
  EXPECT_EQ(errorOf(provider, 500, "oops"), LLMError::apiError(500, "oops"));
  EXPECT_EQ(errorOf(provider, 201, R"({"result":"x"})"), LLMError::apiError(201, R"({"result":"x"})"));
  EXPECT_EQ(errorOf(provider, 403, "\xFF"), LLMError::apiError(403, "Unknown error"));
}

TEST_F(HostedCall, makesAnErrorOfAResponseThatIsNotOfHTTP) {
  platform.network.answerWithoutHTTP();
  try {
    reword(provider);
    FAIL() << "nothing was thrown";
  } catch (const LLMError& error) {
    EXPECT_EQ(error, LLMError::invalidResponse());
  }
}

TEST_F(HostedCall, trimsTheAnswer) {
  EXPECT_EQ(rewordAnswered(provider, R"({"result":"  Hello.\n"})"), "Hello.");
}

TEST_F(HostedCall, cannotParseA200AnswerOfAnyOtherShape) {
  for (const char* body : {R"({"text":"x"})", R"({"result":null})", R"({"result":{}})", R"(["result"])", "{}"})
    EXPECT_EQ(errorOf(provider, 200, body), LLMError::parsingFailed()) << body;
}

TEST_F(HostedCall, passesOnThatTheAnswerIsNoJSON) {
  for (const char* body : {"", "no JSON", R"({"result":"x")"}) {
    platform.network.answer(200, body);
    EXPECT_THROW(reword(provider), JSONError) << body;
  }
}

TEST_F(HostedCall, passesATransportErrorOnAsItIs) {
  platform.network.fail({URLError::Code::networkConnectionLost, "The network connection was lost."});
  EXPECT_THROW(reword(provider), URLError);
}

// Each executor's jobs go through a queue of the test's own, which notes where the token is read.
TEST_F(HostedCall, readsTheTokenOnTheMainActorAndGoesOnOnItsOwnExecutor) {
  struct NotingExecutor : SerialExecutor {
    NotingExecutor(FakeMainActor& target, bool& running) : loop(target), isRunning(running) {}
    void post(std::function<void()> job) override {
      loop.post([this, job = std::move(job)] {
        isRunning = true;
        job();
        isRunning = false;
      });
    }
    FakeMainActor& loop;
    bool& isRunning;
  };
  struct NotingPlatform : FakePlatform {
    std::unique_ptr<SerialExecutor> makeSerialExecutor() override {
      return std::make_unique<NotingExecutor>(loop, isOnExecutor);
    }
    std::unique_ptr<URLSession> makeURLSession(const URLSessionConfiguration&) override {
      struct NotingSession : FakeURLSession {
        explicit NotingSession(NotingPlatform& owner) : FakeURLSession(owner.network), platform(owner) {}
        Task<URLResult> dataForRequest(URLRequest request, Executor& executor) override {
          platform.wasSentOnExecutor = platform.isOnExecutor;
          return FakeURLSession::dataForRequest(std::move(request), executor);
        }
        NotingPlatform& platform;
      };
      return std::make_unique<NotingSession>(*this);
    }
    bool isOnExecutor = false;
    bool wasSentOnExecutor = false;
  };

  NotingPlatform noting;
  bool wasReadOnExecutor = true;
  LLMService own{noting, [&] {
                   wasReadOnExecutor = noting.isOnExecutor;
                   return std::optional<std::string>{"token"};
                 }};
  noting.network.answer(200, R"({"result":"reworded"})");
  EXPECT_EQ(await(noting.loop, own.reword("t", provider, "", "", "", "", 1)), "reworded");
  EXPECT_FALSE(wasReadOnExecutor);
  EXPECT_TRUE(noting.wasSentOnExecutor);
}

Task<void> keepAnswer(LLMService& service, std::vector<std::string>* answers) {
  answers->push_back(co_await service.reword("t", provider, "", "", "", "", 1));
}

TEST_F(HostedCall, ofTheSharedServiceTakesTheTokenOfTheAccountSessionAtEachCall) {
  const Platform::Use use{platform};
  auto& account = TavelleAccountManager::shared();
  account.handleAuthCallback(URL::parse("tavelle://auth?token=first").value());
  std::vector<std::string> answers;
  platform.loop.start(keepAnswer(LLMService::shared(), &answers));
  platform.loop.runUntilIdle();
  account.handleAuthCallback(URL::parse("tavelle://auth?token=second").value());
  platform.loop.start(keepAnswer(LLMService::shared(), &answers));
  platform.loop.runUntilIdle();
  account.signOut();

  ASSERT_EQ(platform.network.requests.size(), 2);
  EXPECT_EQ(platform.network.requests[0].headers[1].second, "Bearer first");
  EXPECT_EQ(platform.network.requests[1].headers[1].second, "Bearer second");
  platform.network.answer(200, R"({"result":"a"})");
  platform.network.answer(200, R"({"result":"b"})");
  platform.loop.runUntilIdle();
  EXPECT_THAT(answers, ElementsAre("a", "b")) << "what is in flight is not the sign-out's business";
}

}  // namespace
}  // namespace tavelle::tests
