#include "llm/LLMService.h"

#include "tests/llm/LLMServiceFixture.h"

#include <vector>

namespace tavelle::tests {
namespace {

using testing::ElementsAre;

constexpr auto chatAnswer = R"({"choices":[{"message":{"content":"reworded"}}]})";

class LLMServiceTest : public LLMServiceFixture {};

Task<void> keepAnswer(LLMService& service, std::string text, std::vector<std::string>* answers) {
  answers->push_back(co_await service.reword(std::move(text), LLMProvider::custom, "m", "http://host", "", "p", 1));
}

TEST_F(LLMServiceTest, givesItsSessionThirtySecondsOfSilence) {
  ASSERT_EQ(platform.network.configurations.size(), 1);
  EXPECT_EQ(platform.network.configurations[0].timeoutIntervalForRequest, std::chrono::seconds{30});
}

TEST_F(LLMServiceTest, speaksTheOpenAIFormatToOllamaAndCustomServersAtTheBaseURLAsTyped) {
  for (const auto provider : {LLMProvider::openAI, LLMProvider::ollama, LLMProvider::custom}) {
    EXPECT_EQ(rewordAnswered(provider, chatAnswer), "reworded");
    EXPECT_EQ(request().url.absoluteString(), "http://host/v1/chat/completions");
  }
}

TEST_F(LLMServiceTest, wantsASignInForTheHostedServiceBeforeItSendsAnything) {
  try {
    reword(LLMProvider::tavelle);
    FAIL() << "nothing was thrown";
  } catch (const LLMError& error) {
    EXPECT_EQ(error, LLMError::authRequired());
  }
  EXPECT_TRUE(platform.network.requests.empty());
}

TEST_F(LLMServiceTest, passesATransportErrorOnAsItIs) {
  platform.network.fail({URLError::Code::timedOut, "The request timed out."});
  try {
    reword(LLMProvider::openAI);
    FAIL() << "nothing was thrown";
  } catch (const URLError& error) {
    EXPECT_EQ(error.code(), URLError::Code::timedOut);
  }
  EXPECT_EQ(platform.network.requests.size(), 1) << "nothing is tried again";
}

TEST_F(LLMServiceTest, passesOnThatTheTextCannotBeWrittenAsJSON) {
  text = "\xFF";
  EXPECT_THROW(reword(LLMProvider::openAI), JSONError);
  EXPECT_TRUE(platform.network.requests.empty());
}

TEST_F(LLMServiceTest, hasSeveralRequestsInFlightAtOnce) {
  std::vector<std::string> answers;
  platform.loop.start(keepAnswer(service, "a", &answers));
  platform.loop.start(keepAnswer(service, "b", &answers));
  platform.loop.runUntilIdle();
  EXPECT_EQ(platform.network.requests.size(), 2);
  EXPECT_TRUE(answers.empty());

  platform.network.answer(200, chatAnswer);
  platform.network.answer(200, R"({"choices":[{"message":{"content":"second"}}]})");
  platform.loop.runUntilIdle();
  EXPECT_THAT(answers, ElementsAre("reworded", "second"));
}

using LLMServiceDeathTest = LLMServiceTest;

TEST_F(LLMServiceDeathTest, endsTheProcessOnAStringThatIsNoURLAndNamesIt) {
  baseURL = "http://my host";
  EXPECT_DEATH(reword(LLMProvider::custom), "not a URL: \"http://my host/chat/completions\"");
}

TEST_F(LLMServiceDeathTest, doesNotNameWhatMayBeSecretInAString) {
  baseURL = "http://user:password@my host/v1?key=secret";
  EXPECT_DEATH(reword(LLMProvider::custom), "not a URL: \"http://my host/v1\"");
}

}  // namespace
}  // namespace tavelle::tests
