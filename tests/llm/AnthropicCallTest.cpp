#include "tests/llm/LLMServiceFixture.h"

namespace tavelle::tests {
namespace {

using testing::ElementsAre;
using testing::Pair;

constexpr auto provider = LLMProvider::anthropic;
constexpr auto answer = R"({"content":[{"type":"text","text":" reworded\n"}]})";

class AnthropicCall : public LLMServiceFixture {};

TEST_F(AnthropicCall, postsTheMessageWithItsThreeHeaders) {
  EXPECT_EQ(rewordAnswered(provider, answer), "reworded");
  EXPECT_EQ(request().url.absoluteString(), "http://host/v1/messages");
  EXPECT_THAT(request().headers,
              ElementsAre(Pair("Content-Type", "application/json"), Pair("x-api-key", "arbitrary-key"),
                          Pair("anthropic-version", "2023-06-01")));
  EXPECT_EQ(request().body,
            R"({"max_tokens":4096,"messages":[{"content":"arbitrary text","role":"user"}],"model":"arbitrary-model",)"
            R"("system":"arbitrary prompt","temperature":0.7})");
}

TEST_F(AnthropicCall, sendsAnEmptyKeyAsAnEmptyHeader) {
  apiKey = "";
  EXPECT_EQ(errorOf(provider, 401, "no key"), LLMError::apiError(401, "no key"));
  EXPECT_THAT(request().headers, testing::Contains(Pair("x-api-key", "")));
}

TEST_F(AnthropicCall, readsTheFirstBlockWhateverItsType) {
  EXPECT_EQ(rewordAnswered(provider, R"({"content":[{"type":"other","text":"a"},{"type":"text","text":"b"}]})"), "a");
}

TEST_F(AnthropicCall, cannotParseA200AnswerOfAnyOtherShape) {
  for (const char* body :
       {R"({})", R"({"content":[]})", R"({"content":"x"})", R"({"content":[5]})",
        R"({"content":[{"type":"tool_use"},{"type":"text","text":"late"}]})", R"({"content":[{"text":null}]})"}) {
    EXPECT_EQ(errorOf(provider, 200, body), LLMError::parsingFailed()) << body;
  }
}

}  // namespace
}  // namespace tavelle::tests
