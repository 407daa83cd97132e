#include "llm/LLMService.h"

#include "llm/JSONRequest.h"
#include "llm/LLMError.h"
#include "platform/Platform.h"
#include "platform/Shared.h"

#include <utility>

namespace tavelle {
namespace {

using namespace std::chrono_literals;

constexpr auto sessionTimeout = 30s;

}  // namespace

LLMService& LLMService::shared() {
  return sharedInstance<LLMService>();
}

LLMService::LLMService(Platform& platform, HostedToken hostedToken)
    : hostedToken_(std::move(hostedToken)),
      mainActor_(platform.mainActor()),
      executor_(platform.makeSerialExecutor()),
      session_(platform.makeURLSession({.timeoutIntervalForRequest = sessionTimeout})) {}

Task<std::string> LLMService::reword(std::string text, LLMProvider provider, std::string model, std::string baseURL,
                                     std::string apiKey, std::string systemPrompt, double temperature) {
  return executor_->run(dispatch(std::move(text), provider, std::move(model), std::move(baseURL), std::move(apiKey),
                                 std::move(systemPrompt), temperature),
                        mainActor_);
}

Task<std::string> LLMService::dispatch(std::string text, LLMProvider provider, std::string model, std::string baseURL,
                                       std::string apiKey, std::string systemPrompt, double temperature) {
  switch (provider) {
    case LLMProvider::tavelle:
      return callTavelle(std::move(text), std::move(systemPrompt), temperature);
    case LLMProvider::anthropic:
      return callAnthropic(std::move(text), std::move(model), std::move(baseURL), std::move(apiKey),
                           std::move(systemPrompt), temperature);
    case LLMProvider::gemini:
      return callGemini(std::move(text), std::move(model), std::move(baseURL), std::move(apiKey),
                        std::move(systemPrompt), temperature);
    case LLMProvider::openAI:
    case LLMProvider::ollama:
    case LLMProvider::custom:
      break;
  }
  return callOpenAICompatible(std::move(text), std::move(model), std::move(baseURL), std::move(apiKey),
                              std::move(systemPrompt), temperature);
}

Task<JSON> LLMService::post(std::string url, URLHeaders headers, JSON body) {
  co_return answerIn(co_await send(std::move(url), std::move(headers), std::move(body)));
}

Task<LLMService::HTTPAnswer> LLMService::send(std::string url, URLHeaders headers, JSON body) {
  URLResult answer = co_await session_->dataForRequest(jsonRequest(url, body, std::move(headers)), *executor_);
  if (!answer.response.statusCode) throw LLMError::invalidResponse();
  co_return HTTPAnswer{*answer.response.statusCode, std::move(answer.data)};
}

JSON LLMService::answerIn(const HTTPAnswer& answer) {
  if (answer.status != 200) throw LLMError::apiError(answer.status, messageIn(answer.body));
  return decodeJSON(answer.body);
}

}  // namespace tavelle
