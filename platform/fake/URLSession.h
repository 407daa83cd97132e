#pragma once

#include "platform/TransferReply.h"
#include "platform/URLSession.h"

#include <deque>
#include <memory>
#include <vector>

namespace tavelle {

// Answers requests as the test lays down beforehand, in order; a request for which there is no answer yet stays in
// flight until one is given, or until its task is dropped.
class FakeURLSession : public URLSession {
 public:
  // What sessions have in common: all that a platform makes share one.
  struct Exchange {
    std::vector<URLSessionConfiguration> configurations;
    std::vector<URLRequest> requests;

    void answer(int status, Data body) { give(URLResult{std::move(body), {status}}); }
    void answerWithoutHTTP(Data body = {}) { give(URLResult{std::move(body), {}}); }
    void fail(URLError error) { give(std::move(error)); }

    std::deque<TransferReply::Outcome> answers;  // those that no request has got yet
    std::deque<std::shared_ptr<TransferReply>> inFlight;

   private:
    friend FakeURLSession;
    void give(TransferReply::Outcome answer);
    void deliver();
  };

  explicit FakeURLSession(Exchange& exchange) : exchange_(exchange) {}

  Task<URLResult> dataForRequest(URLRequest request, Executor& executor) override;

 private:
  static Task<URLResult> load(Exchange* exchange, URLRequest request, Executor* executor);

  Exchange& exchange_;
};

}  // namespace tavelle
