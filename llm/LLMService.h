#pragma once

#include "concurrency/MainActor.h"
#include "concurrency/SerialExecutor.h"
#include "concurrency/Task.h"
#include "llm/JSON.h"
#include "llm/LLMProvider.h"
#include "platform/URLSession.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tavelle {

class Platform;

// The one place from which text is sent to a language model. An actor: its work runs on its own executor, one step at a
// time, and is suspended while a request is in flight, so that several requests can be outstanding. Nothing is cached
// or retried.
class LLMService {
 public:
  // The token of the person's session with the hosted service; none where nobody is signed in. Called on the main
  // actor.
  using HostedToken = std::function<std::optional<std::string>()>;

  static LLMService& shared();
  static std::unique_ptr<LLMService> makeShared();  // in account/, which has the session

  LLMService(Platform& platform, HostedToken hostedToken);

  // Has `text` reworded under `systemPrompt` and returns the answer, trimmed of surrounding white space. The arguments
  // are the settings' own, used as they are. Called on the main actor, where it also resumes. Throws LLMError, URLError
  // or JSONError. A base URL with which no URL can be built ends the process.
  Task<std::string> reword(std::string text, LLMProvider provider, std::string model, std::string baseURL,
                           std::string apiKey, std::string systemPrompt, double temperature);

 private:
  Task<std::string> dispatch(std::string text, LLMProvider provider, std::string model, std::string baseURL,
                             std::string apiKey, std::string systemPrompt, double temperature);

  // One file per wire format. Each runs on the executor and returns the trimmed answer. The hosted service's is in
  // account/.
  Task<std::string> callTavelle(std::string text, std::string systemPrompt, double temperature);
  Task<std::string> callOpenAICompatible(std::string text, std::string model, std::string baseURL, std::string apiKey,
                                         std::string systemPrompt, double temperature);
  Task<std::string> callAnthropic(std::string text, std::string model, std::string baseURL, std::string apiKey,
                                  std::string systemPrompt, double temperature);
  Task<std::string> callGemini(std::string text, std::string model, std::string baseURL, std::string apiKey,
                               std::string systemPrompt, double temperature);

  // What every call has in common: a POST of a JSON body to a 200 answer with a JSON body. `headers` come beside the
  // content type.
  Task<JSON> post(std::string url, URLHeaders headers, JSON body);

  // Its two halves, for a call to which a status says more.
  struct HTTPAnswer {
    int status;
    Data body;
  };
  Task<HTTPAnswer> send(std::string url, URLHeaders headers, JSON body);
  static JSON answerIn(const HTTPAnswer& answer);

  HostedToken hostedToken_;
  MainActor& mainActor_;
  std::unique_ptr<SerialExecutor> executor_;
  std::unique_ptr<URLSession> session_;
};

}  // namespace tavelle
