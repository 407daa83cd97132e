#pragma once

#include "llm/LLMProvider.h"
#include "platform/fake/FakePlatform.h"
#include "platform/linux/MainActor.h"
#include "platform/linux/SerialExecutor.h"
#include "platform/linux/URLSession.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace tavelle::tests {

// The in-memory desktop with the real network, clock and threads.
class WiredPlatform : public FakePlatform {
 public:
  MainActor& mainActor() override { return actor; }
  std::unique_ptr<SerialExecutor> makeSerialExecutor() override { return std::make_unique<LinuxSerialExecutor>(); }
  std::unique_ptr<URLSession> makeURLSession(const URLSessionConfiguration& configuration) override {
    return std::make_unique<Session>(*this, patience ? URLSessionConfiguration{*patience} : configuration);
  }
  URLSession& sharedURLSession() override { return sharedSession_; }

  GLibMainActor actor;
  std::optional<std::chrono::seconds> patience;  // in place of what the program grants a silent server
  std::string hostedServiceAt;                   // where requests to the hosted service's fixed address go instead

 private:
  class Session : public URLSession {
   public:
    Session(const WiredPlatform& platform, const URLSessionConfiguration& configuration)
        : platform_(platform), session_(configuration, platform.transfers_) {}

    Task<URLResult> dataForRequest(URLRequest request, Executor& executor) override {
      const std::string& url = request.url.absoluteString();
      if (url.starts_with(hostedServiceBaseURL)) {
        request.url = URL::parse(platform_.hostedServiceAt + url.substr(hostedServiceBaseURL.size())).value();
      }
      return session_.dataForRequest(std::move(request), executor);
    }

   private:
    const WiredPlatform& platform_;
    LinuxURLSession session_;
  };

  std::shared_ptr<TransferProcess> transfers_ = std::make_shared<TransferProcess>();
  Session sharedSession_{*this, URLSessionConfiguration{}};
};

}  // namespace tavelle::tests
