#include "llm/LLMService.h"

#include "llm/LLMError.h"
#include "platform/FatalError.h"
#include "platform/Platform.h"
#include "platform/Shared.h"
#include "platform/UTF8.h"

#include <utility>

namespace tavelle {
namespace {

using namespace std::chrono_literals;

constexpr auto sessionTimeout = 30s;
constexpr auto requestTimeout = 60s;

// An address that may be shown: the query can hold an API key, and so can the user information.
std::string withoutSecrets(const std::string& address) {
  auto shown = address.substr(0, address.find('?'));
  const auto authority = shown.find("//");
  const auto at = shown.rfind('@');
  if (authority != std::string::npos && at != std::string::npos && at > authority)
    shown.erase(authority + 2, at - authority - 1);
  return shown;
}

// The presets always parse, and a settings field that holds no URL is a fault that no answer of a server could tell of.
URL urlOrDie(const std::string& address) {
  auto url = URL::parse(address);
  if (!url)
    fatalError("not a URL: \"" + withoutSecrets(address) + "\" (see the base URL and the model in the settings)");
  return *std::move(url);
}

}  // namespace

LLMService& LLMService::shared() {
  return sharedInstance<LLMService>();
}

std::unique_ptr<LLMService> LLMService::makeShared() {
  return std::make_unique<LLMService>(Platform::current());
}

LLMService::LLMService(Platform& platform)
    : mainActor_(platform.mainActor()),
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
  headers.emplace(headers.begin(), "Content-Type", "application/json");
  URLRequest request{.url = urlOrDie(url),
                     .method = "POST",
                     .headers = std::move(headers),
                     .body = encodeJSON(body),
                     .timeoutInterval = requestTimeout};

  const URLResult answer = co_await session_->dataForRequest(std::move(request), *executor_);

  const auto status = answer.response.statusCode;
  if (!status) throw LLMError::invalidResponse();
  if (*status != 200) throw LLMError::apiError(*status, isUTF8(answer.data) ? answer.data : "Unknown error");
  co_return decodeJSON(answer.data);
}

// Nobody can be signed in yet, and without a token the hosted service wants a sign-in.
Task<std::string> LLMService::callTavelle(std::string, std::string, double) {
  throw LLMError::authRequired();
  co_return {};
}

}  // namespace tavelle
