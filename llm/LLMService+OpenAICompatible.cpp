#include "llm/JSONPath.h"
#include "llm/LLMService.h"
#include "llm/Trimming.h"

#include <utility>

namespace tavelle {

// The chat-completions format: OpenAI, a local Ollama server, and any endpoint that speaks it. Without a key there is
// no authorization header, which is what a local server expects.
Task<std::string> LLMService::callOpenAICompatible(std::string text, std::string model, std::string baseURL,
                                                   std::string apiKey, std::string systemPrompt, double temperature) {
  URLHeaders headers;
  if (!apiKey.empty()) headers.emplace_back("Authorization", "Bearer " + apiKey);

  JSON body = {
      {"model", std::move(model)},
      {"temperature", temperature},
      {"messages",
       {{{"role", "system"}, {"content", std::move(systemPrompt)}}, {{"role", "user"}, {"content", std::move(text)}}}},
  };
  const JSON answer = co_await post(baseURL + "/chat/completions", std::move(headers), std::move(body));

  co_return trimmingWhitespaceAndNewlines(stringAt(objectAt(firstObjectAt(answer, "choices"), "message"), "content"));
}

}  // namespace tavelle
