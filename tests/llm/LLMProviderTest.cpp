#include "llm/LLMProvider.h"

#include "platform/URL.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <unordered_set>
#include <vector>

namespace tavelle::tests {
namespace {

using testing::ElementsAre;

TEST(LLMProvider, areListedInTheOrderOfThePicker) {
  std::vector<std::string_view> rawValues;
  std::vector<std::string_view> names;
  for (const auto provider : LLMProvider::allCases()) {
    rawValues.push_back(provider.rawValue());
    names.push_back(provider.displayName());
    EXPECT_EQ(provider.id(), provider.rawValue());
  }
  EXPECT_THAT(rawValues, ElementsAre("tavelle", "openai", "anthropic", "gemini", "ollama", "custom"));
  EXPECT_THAT(names, ElementsAre("Tavelle", "OpenAI", "Anthropic", "Gemini", "Ollama", "Custom"));
}

TEST(LLMProvider, presetsAModelForEach) {
  std::vector<std::string_view> models;
  for (const auto provider : LLMProvider::allCases()) models.push_back(provider.defaultModel());
  EXPECT_THAT(models, ElementsAre("tavelle", "gpt-4o", "claude-sonnet-4-20250514", "gemini-2.0-flash", "llama3.2", ""));
}

TEST(LLMProvider, presetsABaseURLForEach) {
  std::vector<std::string_view> urls;
  for (const auto provider : LLMProvider::allCases()) urls.push_back(provider.defaultBaseURL());
  EXPECT_THAT(urls, ElementsAre(hostedServiceBaseURL, "https://api.openai.com/v1", "https://api.anthropic.com/v1",
                                "https://generativelanguage.googleapis.com/v1beta", "http://localhost:11434/v1", ""));
}

TEST(LLMProvider, hasItsHostedServiceWhereNoTokenCanReachAStranger) {
  EXPECT_EQ(hostedServiceBaseURL, "https://api.tavelle.example");
}

TEST(LLMProvider, wantsAKeyForThreePublicServicesAndACustomOne) {
  std::vector<LLMProvider::Case> wanting;
  for (const auto provider : LLMProvider::allCases()) {
    if (provider.requiresAPIKey()) wanting.push_back(provider);
  }
  EXPECT_THAT(wanting,
              ElementsAre(LLMProvider::openAI, LLMProvider::anthropic, LLMProvider::gemini, LLMProvider::custom));
}

TEST(LLMProvider, isFoundByItsExactRawValueOnly) {
  for (const auto provider : LLMProvider::allCases())
    EXPECT_EQ(LLMProvider::fromRawValue(provider.rawValue()), provider);
  for (const char* other : {"openAI", "OpenAI", "", "openai ", "Gemini"})
    EXPECT_FALSE(LLMProvider::fromRawValue(other)) << other;
}

TEST(LLMProvider, isWrittenAndReadAsItsRawValue) {
  EXPECT_EQ(JSON(LLMProvider{LLMProvider::gemini}).dump(), "\"gemini\"");
  for (const auto provider : LLMProvider::allCases()) EXPECT_EQ(JSON(provider).get<LLMProvider>(), provider);
  for (const char* other : {"\"openAI\"", "\"\"", "5", "null"}) {
    EXPECT_THROW(JSON::parse(other).get<LLMProvider>(), JSONError) << other;
  }
}

TEST(LLMProvider, canBeAKeyOfAHashedTable) {
  std::unordered_set<LLMProvider> set{LLMProvider::allCases().begin(), LLMProvider::allCases().end()};
  EXPECT_EQ(set.size(), 6);
  EXPECT_TRUE(set.contains(LLMProvider::ollama));
}

}  // namespace
}  // namespace tavelle::tests
