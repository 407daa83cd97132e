#include "concurrency/MainActor.h"

#include <coroutine>
#include <exception>
#include <memory>

namespace tavelle {
namespace {

// A coroutine that nobody awaits: it runs when called and frees its own frame at the end.
struct Detached {
  struct promise_type {
    Detached get_return_object() const noexcept { return {}; }
    std::suspend_never initial_suspend() const noexcept { return {}; }
    std::suspend_never final_suspend() const noexcept { return {}; }
    void return_void() const noexcept {}
    void unhandled_exception() const noexcept { std::terminate(); }
  };
};

Detached runToEnd(Task<void> work, int* running) {
  co_await work;
  --*running;
}

struct Delay {
  MainActor& actor;
  std::chrono::milliseconds duration;
  bool await_ready() const noexcept { return false; }
  void await_suspend(std::coroutine_handle<> waiting) const { actor.postAfter(duration, waiting); }
  void await_resume() const noexcept {}
};

}  // namespace

Task<void> MainActor::sleep(std::chrono::milliseconds duration) {
  co_await Delay{*this, duration};
}

void MainActor::start(Task<void> work) {
  // std::function wants something copyable; the task is not, so it travels behind a pointer.
  auto owned = std::make_shared<Task<void>>(std::move(work));
  ++running_;
  post([this, owned] { runToEnd(std::move(*owned), &running_); });
}

}  // namespace tavelle
