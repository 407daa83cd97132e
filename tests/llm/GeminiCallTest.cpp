#include "tests/llm/LLMServiceFixture.h"

namespace tavelle::tests {
namespace {

using testing::ElementsAre;
using testing::Pair;

constexpr auto provider = LLMProvider::gemini;
constexpr auto answer = R"({"candidates":[{"content":{"parts":[{"text":" reworded\n"}]}}]})";

class GeminiCall : public LLMServiceFixture {};

TEST_F(GeminiCall, postsTheContentsWithTheKeyInTheQueryOnly) {
  baseURL = "https://host/v1beta";
  model = "gemini-2.0-flash";
  EXPECT_EQ(rewordAnswered(provider, answer), "reworded");
  EXPECT_EQ(request().url.absoluteString(),
            "https://host/v1beta/models/gemini-2.0-flash:generateContent?key=arbitrary-key");
  EXPECT_THAT(request().headers, ElementsAre(Pair("Content-Type", "application/json")));
  EXPECT_EQ(request().body, R"({"contents":[{"parts":[{"text":"arbitrary text"}],"role":"user"}],)"
                            R"("generationConfig":{"maxOutputTokens":4096,"temperature":0.7},)"
                            R"("systemInstruction":{"parts":[{"text":"arbitrary prompt"}]}})");
}

TEST_F(GeminiCall, insertsTheKeyAsItIs) {
  apiKey = "a&b#c";
  rewordAnswered(provider, answer);
  EXPECT_EQ(request().url.absoluteString(), "http://host/v1/models/arbitrary-model:generateContent?key=a&b#c");
}

TEST_F(GeminiCall, cannotParseA200AnswerOfAnyOtherShape) {
  for (const char* body :
       {R"({})", R"({"candidates":[]})", R"({"candidates":[{"finishReason":"SAFETY"}]})",
        R"({"candidates":[{"content":{"parts":[]}}]})", R"({"candidates":[{"content":{"parts":[{}]}}]})",
        R"({"candidates":[{"content":{"parts":[{"text":5}]}}]})", R"({"candidates":[{"content":[]}]})"}) {
    EXPECT_EQ(errorOf(provider, 200, body), LLMError::parsingFailed()) << body;
  }
}

TEST_F(GeminiCall, makesAnErrorOfARefusedKey) {
  EXPECT_EQ(errorOf(provider, 400, "API key not valid"), LLMError::apiError(400, "API key not valid"));
}

using GeminiCallDeathTest = GeminiCall;

TEST_F(GeminiCallDeathTest, endsTheProcessForAKeyThatMakesNoURL) {
  for (const auto* key : {"two words", "clé", "鍵", "\"quoted\"", "100%"}) {
    apiKey = key;
    EXPECT_DEATH(reword(provider), "not a URL: ") << key;
  }
}

TEST_F(GeminiCallDeathTest, namesTheAddressButNotTheKeyWhenTheyMakeNoURL) {
  apiKey = "secret key";
  EXPECT_DEATH(reword(provider), "not a URL: \"http://host/v1/models/arbitrary-model:generateContent\" ");
}

}  // namespace
}  // namespace tavelle::tests
