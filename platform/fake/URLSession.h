#pragma once

#include "platform/URLSession.h"

#include <coroutine>
#include <deque>
#include <exception>
#include <variant>
#include <vector>

namespace tavelle {

// Answers requests as the test lays down beforehand, in order; a request for which there is no answer yet stays in
// flight until one is given.
class FakeURLSession : public URLSession {
 public:
  // What sessions have in common: all that a platform makes share one.
  struct Exchange {
    std::vector<URLSessionConfiguration> configurations;
    std::vector<URLRequest> requests;

    void answer(int status, Data body) { give(URLResult{std::move(body), {status}}); }
    void answerWithoutHTTP() { give(URLResult{}); }
    void fail(URLError error) { give(std::make_exception_ptr(std::move(error))); }

    using Answer = std::variant<URLResult, std::exception_ptr>;
    std::deque<Answer> answers;
    std::deque<std::function<void()>> inFlight;

   private:
    void give(Answer answer);
  };

  explicit FakeURLSession(Exchange& exchange) : exchange_(exchange) {}

  Task<URLResult> dataForRequest(URLRequest request, Executor& executor) override;

 private:
  Exchange& exchange_;
};

}  // namespace tavelle
