#include "tests/support/Load.h"

#include <coroutine>
#include <exception>
#include <stdexcept>
#include <utility>

namespace tavelle::tests {

// A coroutine that runs at once, and can be dropped while it waits.
class Load::Frame {
 public:
  struct promise_type {
    Frame get_return_object() { return Frame{std::coroutine_handle<promise_type>::from_promise(*this)}; }
    std::suspend_never initial_suspend() const noexcept { return {}; }
    std::suspend_always final_suspend() const noexcept { return {}; }
    void return_void() const noexcept {}
    void unhandled_exception() const noexcept { std::terminate(); }
  };

  explicit Frame(std::coroutine_handle<promise_type> handle) : handle_(handle) {}
  Frame(Frame&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Frame& operator=(Frame&&) = delete;
  ~Frame() {
    if (handle_) handle_.destroy();
  }

 private:
  std::coroutine_handle<promise_type> handle_;
};

Load::Frame Load::follow(Task<URLResult> task, std::shared_ptr<Outcome> outcome) {
  try {
    outcome->result = co_await task;
  } catch (const URLError& error) {
    outcome->error = error;
  }
  outcome->resumedOn = std::this_thread::get_id();
  outcome->isDone = true;
}

Load::Load(URLSession& session, URLRequest request, QueueExecutor& executor)
    : executor_(&executor),
      outcome_(std::make_shared<Outcome>()),
      frame_(std::make_unique<Frame>(follow(session.dataForRequest(std::move(request), executor), outcome_))) {}

Load::~Load() = default;
Load::Load(Load&& other) noexcept = default;

URLResult Load::result() {
  if (!executor_->runUntil([this] { return isDone(); })) throw std::runtime_error("the load did not end");
  if (outcome_->error) throw std::runtime_error("the load failed: " + outcome_->error->errorDescription());
  return *outcome_->result;
}

URLError Load::error() {
  if (!executor_->runUntil([this] { return isDone(); })) throw std::runtime_error("the load did not end");
  if (!outcome_->error) throw std::runtime_error("the load did not fail");
  return *outcome_->error;
}

}  // namespace tavelle::tests
