#include "platform/fake/URLSession.h"

#include <utility>

namespace tavelle {

void FakeURLSession::Exchange::give(TransferReply::Outcome answer) {
  answers.push_back(std::move(answer));
  deliver();
}

void FakeURLSession::Exchange::deliver() {
  while (!answers.empty() && !inFlight.empty()) {
    inFlight.front()->deliver(std::move(answers.front()));
    inFlight.pop_front();
    answers.pop_front();
  }
}

Task<URLResult> FakeURLSession::dataForRequest(URLRequest request, Executor& executor) {
  return load(&exchange_, std::move(request), &executor);
}

Task<URLResult> FakeURLSession::load(Exchange* exchange, URLRequest request, Executor* executor) {
  // Lives in the coroutine's frame, so that dropping the task ends it too.
  struct Loading {
    Exchange* exchange;
    std::shared_ptr<TransferReply> reply;
    ~Loading() {
      if (reply->abandon()) std::erase(exchange->inFlight, reply);
    }
  };
  const Loading loading{exchange, std::make_shared<TransferReply>(*executor)};
  exchange->requests.push_back(std::move(request));
  exchange->inFlight.push_back(loading.reply);
  exchange->deliver();
  co_await loading.reply->arrival();
  co_return loading.reply->take();
}

}  // namespace tavelle
