#pragma once

#include <coroutine>
#include <functional>

namespace tavelle {

// Where work runs: the main actor or an actor's own serial executor. Jobs run one at a time, in the order they came.
class Executor {
 public:
  virtual ~Executor() = default;

  // Runs `job` later, never within this call. Callable from any thread. A job must not throw.
  virtual void post(std::function<void()> job) = 0;

  // `co_await executor.hop()` goes on in a job of this executor.
  auto hop() {
    struct Awaiter {
      Executor& executor;
      bool await_ready() const noexcept { return false; }
      void await_suspend(std::coroutine_handle<> waiting) const { executor.post(waiting); }
      void await_resume() const noexcept {}
    };
    return Awaiter{*this};
  }
};

}  // namespace tavelle
