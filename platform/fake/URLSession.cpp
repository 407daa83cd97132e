#include "platform/fake/URLSession.h"

#include <functional>
#include <utility>

namespace tavelle {
namespace {

struct UntilAnswered {
  FakeURLSession::Exchange& exchange;
  Executor& executor;

  bool await_ready() const { return exchange.answers.size() > exchange.inFlight.size(); }
  void await_suspend(std::coroutine_handle<> waiting) const {
    exchange.inFlight.emplace_back([this, waiting] { executor.post(waiting); });
  }
  void await_resume() const noexcept {}
};

}  // namespace

void FakeURLSession::Exchange::give(Answer answer) {
  answers.push_back(std::move(answer));
  if (inFlight.empty()) return;
  const auto resume = std::move(inFlight.front());
  inFlight.pop_front();
  resume();
}

Task<URLResult> FakeURLSession::dataForRequest(URLRequest request, Executor& executor) {
  exchange_.requests.push_back(std::move(request));
  co_await UntilAnswered{exchange_, executor};
  auto answer = std::move(exchange_.answers.front());
  exchange_.answers.pop_front();
  if (const auto* error = std::get_if<std::exception_ptr>(&answer)) std::rethrow_exception(*error);
  co_return std::get<URLResult>(std::move(answer));
}

}  // namespace tavelle
