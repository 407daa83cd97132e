#pragma once

#include "concurrency/Executor.h"
#include "platform/URLSession.h"

#include <coroutine>
#include <memory>
#include <mutex>
#include <variant>

namespace tavelle {

// The one reply to a request, on its way from the backend's thread to the coroutine that waits for it. Callable from
// any thread.
class TransferReply : public std::enable_shared_from_this<TransferReply> {
 public:
  using Outcome = std::variant<std::monostate, URLResult, URLError>;

  explicit TransferReply(Executor& executor) : executor_(executor) {}

  // The first reply counts; later ones, and any after abandon(), are nothing. Once this has returned, the executor is
  // not touched for this reply any more.
  void deliver(Outcome outcome);

  // Nobody waits any longer: nothing will be resumed. True where no reply had come yet.
  bool abandon();

  // Suspends until the reply is there and goes on in a job of the executor.
  auto arrival() {
    struct Awaiter {
      TransferReply& reply;
      bool await_ready() const noexcept { return false; }
      void await_suspend(std::coroutine_handle<> waiting) const { reply.resumeOnArrival(waiting); }
      void await_resume() const noexcept {}
    };
    return Awaiter{*this};
  }

  // The result, or the error as an exception. After the arrival.
  URLResult take();

 private:
  void resumeOnArrival(std::coroutine_handle<> waiting);
  void postResumption();

  Executor& executor_;
  std::mutex mutex_;
  Outcome outcome_;
  std::coroutine_handle<> waiting_;
};

}  // namespace tavelle
