#include "llm/JSONPath.h"
#include "llm/LLMService.h"
#include "llm/Trimming.h"

#include <utility>

namespace tavelle {

// The Anthropic Messages format. The key is sent even when it is empty: the server then says what is missing.
Task<std::string> LLMService::callAnthropic(std::string text, std::string model, std::string baseURL,
                                            std::string apiKey, std::string systemPrompt, double temperature) {
  URLHeaders headers{{"x-api-key", apiKey}, {"anthropic-version", "2023-06-01"}};

  JSON body = {
      {"model", std::move(model)},
      {"max_tokens", 4096},
      {"temperature", temperature},
      {"system", std::move(systemPrompt)},
      {"messages", JSON::array({{{"role", "user"}, {"content", std::move(text)}}})},
  };
  const JSON answer = co_await post(baseURL + "/messages", std::move(headers), std::move(body));

  co_return trimmingWhitespaceAndNewlines(stringAt(firstObjectAt(answer, "content"), "text"));
}

}  // namespace tavelle
