#include "llm/LLMError.h"

#include <gtest/gtest.h>

namespace tavelle::tests {
namespace {

TEST(LLMError, describesAnAPIErrorByStatusAndMessage) {
  EXPECT_EQ(LLMError::apiError(503, "busy").errorDescription(), "API error (503): busy");
  EXPECT_EQ(LLMError::apiError(-1, "x").errorDescription(), "API error (-1): x");
}

TEST(LLMError, doesNotShortenAMessage) {
  EXPECT_EQ(LLMError::apiError(500, std::string(100'000, 'x')).errorDescription().size(), 100'000 + 17);
}

TEST(LLMError, describesTheOthersWithoutAFullStop) {
  EXPECT_EQ(LLMError::invalidResponse().errorDescription(), "Invalid response from server");
  EXPECT_EQ(LLMError::parsingFailed().errorDescription(), "Failed to parse response");
  EXPECT_EQ(LLMError::authRequired().errorDescription(), "Sign in to Tavelle required");
}

}  // namespace
}  // namespace tavelle::tests
