#pragma once

#include "llm/LLMError.h"
#include "llm/LLMService.h"
#include "platform/fake/FakePlatform.h"
#include "tests/support/Await.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <exception>
#include <optional>
#include <string>

namespace tavelle::tests {

// The service on the fake backend, with arguments that a test changes where they matter to it.
class LLMServiceFixture : public testing::Test {
 protected:
  // Has the text reworded, with what the network was told to answer.
  std::string reword(LLMProvider provider) {
    return await(platform.loop, service.reword(text, provider, model, baseURL, apiKey, systemPrompt, temperature));
  }

  // The same, with a 200 answer of this body.
  std::string rewordAnswered(LLMProvider provider, const std::string& body) {
    platform.network.answer(200, body);
    return reword(provider);
  }

  // The error with which the call ends; none if it succeeds.
  std::optional<LLMError> errorOf(LLMProvider provider, int status, const std::string& body) {
    platform.network.answer(status, body);
    try {
      reword(provider);
    } catch (const LLMError& error) {
      return error;
    }
    return std::nullopt;
  }

  const URLRequest& request() const { return platform.network.requests.back(); }
  JSON requestBody() const { return decodeJSON(request().body); }

  FakePlatform platform;
  std::optional<std::string> hostedToken;
  LLMService service{platform, [this] { return hostedToken; }};

  std::string text = "arbitrary text";
  std::string model = "arbitrary-model";
  std::string baseURL = "http://host/v1";
  std::string apiKey = "arbitrary-key";
  std::string systemPrompt = "arbitrary prompt";
  double temperature = 0.7;
};

}  // namespace tavelle::tests
