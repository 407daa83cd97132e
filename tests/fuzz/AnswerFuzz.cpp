// What a provider answers: any status with any body, and any text in the place where its format has it.

#include "llm/JSONRequest.h"
#include "llm/LLMError.h"
#include "llm/LLMService.h"
#include "llm/Trimming.h"
#include "platform/fake/FakePlatform.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/support/Await.h"

#include <array>

namespace tavelle::fuzz {
namespace {

constexpr std::array providers{LLMProvider::openAI, LLMProvider::anthropic, LLMProvider::gemini, LLMProvider::tavelle};
constexpr std::array statuses{200, 201, 401, 500};

// A person who is signed in and asks for a text to be reworded.
struct Person {
  std::string reword(LLMProvider provider, int status, const std::string& body) {
    platform.network.requests.clear();
    platform.network.answer(status, body);
    return tests::await(platform.loop, service.reword("text", provider, "model", "http://host", "key", "prompt", 0.5));
  }

  FakePlatform platform;
  LLMService service{platform, [] { return std::optional<std::string>{"token"}; }};
};

Person& person() {
  static Person one;
  return one;
}

// The whole answer of a provider that has this to say.
JSON answerSaying(LLMProvider provider, const std::string& text) {
  switch (provider) {
    case LLMProvider::anthropic:
      return {{"content", JSON::array({{{"type", "text"}, {"text", text}}})}};
    case LLMProvider::gemini:
      return {{"candidates", JSON::array({{{"content", {{"parts", JSON::array({{{"text", text}}})}}}}})}};
    case LLMProvider::tavelle:
      return {{"result", text}};
    default:
      return {{"choices", JSON::array({{{"message", {{"role", "assistant"}, {"content", text}}}}})}};
  }
}

void takeText(LLMProvider provider, const std::string& text) {
  const auto result = person().reword(provider, 200, answerSaying(provider, text).dump());
  require(result == trimmingWhitespaceAndNewlines(text), "the text is not what the provider said");
  require(isTrimmed(result), "the text is not trimmed");
}

void takeAnything(LLMProvider provider, int status, const std::string& body) {
  const bool wantsSignIn = provider == LLMProvider::tavelle && status == 401;
  try {
    const auto result = person().reword(provider, status, body);
    require(status == 200, "an answer that is a refusal gave a text");
    require(isUTF8(result), "the text is not UTF-8");
    require(isTrimmed(result), "the text is not trimmed");
    require(result.size() <= body.size(), "the text is longer than the answer");
  } catch (const JSONError&) {
    require(status == 200, "a refusal is read as JSON");
  } catch (const LLMError& error) {
    require(isUTF8(error.errorDescription()), "words that cannot be shown");
    const auto expected = status == 200 ? LLMError::parsingFailed()
                          : wantsSignIn ? LLMError::authRequired()
                                        : LLMError::apiError(status, messageIn(body));
    require(error == expected, "another error than the status says");
  }
}

void run(Input input) {
  const auto provider = providers.at(input.choice(providers.size()));
  const auto status = input.choice(statuses.size() + 1);
  if (status == statuses.size()) return takeText(provider, textOf(input.rest()));
  takeAnything(provider, statuses.at(status), std::string{input.rest()});
}

}  // namespace
}  // namespace tavelle::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tavelle::fuzz::run({data, size});
  return 0;
}
