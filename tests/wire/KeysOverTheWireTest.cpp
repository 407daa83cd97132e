#include "tests/wire/OverTheWire.h"

#include <string>

namespace tavelle::tests {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

// Keys as people have them, and as they mistype them.

using KeysOverTheWire = OverTheWire;

TEST_F(KeysOverTheWire, travelInAHeaderByteForByte) {
  for (const std::string key : {"a&b=c#d", "two words, \"quoted\"", "clé-ключ-鍵-🔑", "%41?/+\\"}) {
    const StandIn standIn{{"--key", key}};
    EXPECT_EQ(reword(LLMProvider::openAI, "gpt-4o", standIn.baseURL(), key), "I cannot come.");
    EXPECT_EQ(reword(LLMProvider::anthropic, "claude", standIn.baseURL(), key), "I cannot come.");
    EXPECT_EQ(standIn.requests().at(0).header("authorization"), "Bearer " + key);
    EXPECT_EQ(standIn.requests().at(1).header("x-api-key"), key);
  }
}

TEST_F(KeysOverTheWire, corruptGeminisQueryWhereTheyHoldItsMarks) {
  const StandIn standIn{{"--key", "a&b"}};
  EXPECT_THAT(reword(LLMProvider::gemini, "gemini", standIn.root() + "/v1beta", "a&b"), HasSubstr("API key not valid"));
  EXPECT_THAT(standIn.requests().back().path, EndsWith(":generateContent?key=a&b"));
  EXPECT_THAT(reword(LLMProvider::gemini, "gemini", standIn.root() + "/v1beta", "a#b"), HasSubstr("API key not valid"));
  EXPECT_THAT(standIn.requests().back().path, EndsWith(":generateContent?key=a")) << "the rest is a fragment";
}

TEST_F(KeysOverTheWire, areAbsentForAnEmptyKeyOnlyInTheOpenAIFormat) {
  const StandIn standIn;
  for (const auto provider : {LLMProvider::openAI, LLMProvider::ollama, LLMProvider::custom}) {
    EXPECT_EQ(reword(provider, "any", standIn.baseURL(), ""), "I cannot come.");
    EXPECT_FALSE(standIn.requests().back().hasHeader("authorization"));
  }
  EXPECT_THAT(reword(LLMProvider::anthropic, "any", standIn.baseURL(), ""),
              AllOf(StartsWith("API error (401): {"), HasSubstr("x-api-key header is required")));
  EXPECT_TRUE(standIn.requests().back().hasHeader("x-api-key"));
  EXPECT_EQ(standIn.requests().back().header("x-api-key"), "");
  EXPECT_THAT(reword(LLMProvider::gemini, "any", standIn.root() + "/v1beta", ""), StartsWith("API error (403): {"));
  EXPECT_THAT(standIn.requests().back().path, EndsWith("?key="));
}

TEST_F(KeysOverTheWire, areSentWhenTheyAreBlank) {
  const StandIn standIn;
  reword(LLMProvider::custom, "any", standIn.baseURL(), " ");
  EXPECT_EQ(standIn.requests().back().header("authorization"), "Bearer  ");
}

}  // namespace
}  // namespace tavelle::tests
