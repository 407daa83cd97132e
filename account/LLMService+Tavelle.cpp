#include "account/TavelleAccountManager.h"
#include "llm/JSONPath.h"
#include "llm/LLMError.h"
#include "llm/LLMService.h"
#include "llm/Trimming.h"
#include "platform/Platform.h"

#include <utility>

namespace tavelle {

std::unique_ptr<LLMService> LLMService::makeShared() {
  return std::make_unique<LLMService>(Platform::current(),
                                      [] { return TavelleAccountManager::shared().cachedToken(); });
}

// The hosted service's format, always at its own address. The session is the main actor's; an empty token is one, and
// the service then says that it wants a sign-in.
Task<std::string> LLMService::callTavelle(std::string text, std::string systemPrompt, double temperature) {
  co_await mainActor_.hop();
  const std::optional<std::string> token = hostedToken_();
  co_await executor_->hop();
  if (!token) throw LLMError::authRequired();
  URLHeaders headers{{"Authorization", "Bearer " + *token}};

  JSON body = {
      {"text", std::move(text)},
      {"systemPrompt", std::move(systemPrompt)},
      {"temperature", temperature},
  };
  const HTTPAnswer answer =
      co_await send(std::string{hostedServiceBaseURL} + "/reword", std::move(headers), std::move(body));
  if (answer.status == 401) throw LLMError::authRequired();

  co_return trimmingWhitespaceAndNewlines(stringAt(answerIn(answer), "result"));
}

}  // namespace tavelle
