#include "tests/llm/LLMServiceFixture.h"

namespace tavelle::tests {
namespace {

using testing::ElementsAre;
using testing::Pair;

constexpr auto provider = LLMProvider::openAI;
constexpr auto answer = R"({"choices":[{"message":{"content":"reworded"}}]})";

class OpenAICompatibleCall : public LLMServiceFixture {};

TEST_F(OpenAICompatibleCall, postsTheChatCompletionToTheBaseURL) {
  EXPECT_EQ(rewordAnswered(provider, answer), "reworded");
  EXPECT_EQ(request().url.absoluteString(), "http://host/v1/chat/completions");
  EXPECT_EQ(request().method, "POST");
  EXPECT_EQ(request().timeoutInterval, std::chrono::seconds{60});
  EXPECT_THAT(request().headers,
              ElementsAre(Pair("Content-Type", "application/json"), Pair("Authorization", "Bearer arbitrary-key")));
}

TEST_F(OpenAICompatibleCall, sendsModelTemperatureAndTwoMessagesAndNothingElse) {
  rewordAnswered(provider, answer);
  EXPECT_EQ(
      request().body,
      R"({"messages":[{"content":"arbitrary prompt","role":"system"},{"content":"arbitrary text","role":"user"}],)"
      R"("model":"arbitrary-model","temperature":0.7})");
}

TEST_F(OpenAICompatibleCall, sendsTheTextUnchanged) {
  text = std::string{" \"quotes\" \\ \0 \n 😀 ", 20};
  rewordAnswered(provider, answer);
  EXPECT_EQ(requestBody()["messages"][1]["content"], text);
}

TEST_F(OpenAICompatibleCall, sendsAWholeTemperatureWithoutAFraction) {
  temperature = 1.0;
  rewordAnswered(provider, answer);
  EXPECT_NE(request().body.find("\"temperature\":1}"), std::string::npos) << request().body;
}

TEST_F(OpenAICompatibleCall, sendsNoAuthorizationWithoutAKey) {
  apiKey = "";
  rewordAnswered(provider, answer);
  EXPECT_THAT(request().headers, ElementsAre(Pair("Content-Type", "application/json")));
}

TEST_F(OpenAICompatibleCall, sendsAKeyThatIsBlank) {
  apiKey = " ";
  rewordAnswered(provider, answer);
  EXPECT_THAT(request().headers, testing::Contains(Pair("Authorization", "Bearer  ")));
}

TEST_F(OpenAICompatibleCall, keepsTheDoubleSlashOfABaseURLThatEndsInOne) {
  baseURL = "http://host/v1/";
  rewordAnswered(provider, answer);
  EXPECT_EQ(request().url.absoluteString(), "http://host/v1//chat/completions");
}

TEST_F(OpenAICompatibleCall, makesARelativeURLOfAnEmptyBaseURLAndPassesTheRefusalOn) {
  baseURL = "";
  platform.network.fail({URLError::Code::unsupportedURL, "unsupported URL"});
  try {
    reword(LLMProvider::custom);
    FAIL() << "nothing was thrown";
  } catch (const URLError& error) {
    EXPECT_EQ(error.errorDescription(), "unsupported URL");
  }
  EXPECT_EQ(request().url.absoluteString(), "/chat/completions");
}

TEST_F(OpenAICompatibleCall, trimsTheAnswer) {
  EXPECT_EQ(rewordAnswered(provider, R"({"choices":[{"message":{"content":"\n\u00a0 reworded \u3000\r\n"}}]})"),
            "reworded");
}

TEST_F(OpenAICompatibleCall, returnsAnEmptyAnswer) {
  EXPECT_EQ(rewordAnswered(provider, R"({"choices":[{"message":{"content":" "}}]})"), "");
}

TEST_F(OpenAICompatibleCall, takesTheFirstChoice) {
  EXPECT_EQ(rewordAnswered(provider, R"({"choices":[{"message":{"content":"a"}},{"message":{"content":"b"}}]})"), "a");
}

TEST_F(OpenAICompatibleCall, cannotParseA200AnswerOfAnyOtherShape) {
  for (const char* body :
       {R"({"choices":[]})", R"({})", R"([])", R"({"choices":null})", R"({"choices":{}})", R"({"choices":"x"})",
        R"({"choices":[5]})", R"({"choices":[null]})", R"({"choices":[{"message":{"content":"x"}},5]})",
        R"({"choices":[{}]})", R"({"choices":[{"message":null}]})", R"({"choices":[{"message":"x"}]})",
        R"({"choices":[{"message":{}}]})", R"({"choices":[{"message":{"content":null}}]})",
        R"({"choices":[{"message":{"content":5}}]})", R"({"choices":[{"message":{"content":["x"]}}]})",
        R"({"error":{"message":"x"}})"}) {
    EXPECT_EQ(errorOf(provider, 200, body), LLMError::parsingFailed()) << body;
  }
}

TEST_F(OpenAICompatibleCall, passesOnWhatTheParserSays) {
  for (const char* body : {"", "<html>", "5", "\"x\"", "{\"choices\":", "\xFF"}) {
    platform.network.answer(200, body);
    EXPECT_THROW(reword(provider), JSONError) << body;
  }
}

TEST_F(OpenAICompatibleCall, makesAnErrorOfEveryOtherStatusWithTheWholeBody) {
  const std::string json = R"({"error": {"message": "slow down"}})";
  EXPECT_EQ(errorOf(provider, 429, json), LLMError::apiError(429, json));
  EXPECT_EQ(errorOf(provider, 201, answer), LLMError::apiError(201, answer));
  EXPECT_EQ(errorOf(provider, 204, ""), LLMError::apiError(204, ""));
  EXPECT_EQ(errorOf(provider, 401, "no"), LLMError::apiError(401, "no"));
}

TEST_F(OpenAICompatibleCall, hasNoWordsForABodyThatIsNotUTF8) {
  EXPECT_EQ(errorOf(provider, 500, "\xFF\xFE"), LLMError::apiError(500, "Unknown error"));
}

TEST_F(OpenAICompatibleCall, refusesAResponseThatIsNotOfHTTP) {
  platform.network.answerWithoutHTTP();
  try {
    reword(provider);
    FAIL() << "nothing was thrown";
  } catch (const LLMError& error) {
    EXPECT_EQ(error, LLMError::invalidResponse());
  }
}

}  // namespace
}  // namespace tavelle::tests
