#include "llm/JSONPath.h"
#include "llm/LLMService.h"
#include "llm/Trimming.h"

#include <utility>

namespace tavelle {

// The Gemini generateContent format. Model and key are put into the address as they are; no header carries the key.
Task<std::string> LLMService::callGemini(std::string text, std::string model, std::string baseURL, std::string apiKey,
                                         std::string systemPrompt, double temperature) {
  const auto parts = [](std::string content) { return JSON{{"parts", JSON::array({{{"text", std::move(content)}}})}}; };
  JSON turn = parts(std::move(text));
  turn["role"] = "user";

  JSON body = {
      {"systemInstruction", parts(std::move(systemPrompt))},
      {"contents", JSON::array({std::move(turn)})},
      {"generationConfig", {{"temperature", temperature}, {"maxOutputTokens", 4096.0}}},
  };
  const std::string url = baseURL + "/models/" + model + ":generateContent?key=" + apiKey;
  const JSON answer = co_await post(url, {}, std::move(body));

  const JSON& content = objectAt(firstObjectAt(answer, "candidates"), "content");
  co_return trimmingWhitespaceAndNewlines(stringAt(firstObjectAt(content, "parts"), "text"));
}

}  // namespace tavelle
