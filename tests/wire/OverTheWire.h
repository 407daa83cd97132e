#pragma once

#include "llm/KeychainHelper.h"
#include "llm/LLMService.h"
#include "tests/platform/linux/MainLoop.h"
#include "tests/support/StandIn.h"
#include "tests/wire/WiredPlatform.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>

namespace tavelle::tests {

// The service on the real network.
class OverTheWire : public testing::Test {
 protected:
  static constexpr auto arbitraryKey = "made-up-key";

  // The answer, or the error's description.
  std::string reword(LLMProvider provider, const std::string& model, const std::string& baseURL,
                     const std::string& apiKey = arbitraryKey) {
    return outcomeOf(LLMService::shared().reword("i cant come", provider, model, baseURL, apiKey, "Reword it.", 0.7));
  }

  // What `work` returns, or the description of the error with which it ends.
  std::string outcomeOf(Task<std::string> work) {
    std::optional<std::string> outcome;
    platform.mainActor().start(keepOutcome(std::move(work), &outcome));
    EXPECT_TRUE(waitUntil([&outcome] { return outcome.has_value(); }));
    return outcome.value_or("");
  }

  void signInWith(const std::string& token) { KeychainHelper{platform.secrets}.save("tavelle_auth_token", token); }

  WiredPlatform platform;
  Platform::Use use{platform};

 private:
  static Task<void> keepOutcome(Task<std::string> work, std::optional<std::string>* outcome) {
    try {
      *outcome = co_await work;
    } catch (const LocalizedError& error) {
      *outcome = error.errorDescription();
    }
  }
};

}  // namespace tavelle::tests
