#pragma once

#include <coroutine>
#include <memory>
#include <optional>
#include <utility>

namespace tavelle::x11 {

// Something that an event brings later: whoever handles the event keeps a copy and calls come(), a coroutine awaits the
// other. Copies are one and the same arrival. One coroutine waits at most; it goes on inside come(), which therefore is
// the last thing that an event handler does. Main thread only.
template <typename T>
class Arrival {
  struct State {
    std::optional<T> value;
    std::coroutine_handle<> waiting;
  };

 public:
  // Only the first one counts.
  void come(T value) {
    const auto state = state_;
    if (state->value) return;
    state->value.emplace(std::move(value));
    if (const auto waiting = std::exchange(state->waiting, nullptr)) waiting.resume();
  }

  class Awaiter {
   public:
    explicit Awaiter(const Arrival& arrival) : state_(arrival.state_) {}
    Awaiter(const Awaiter&) = delete;
    Awaiter& operator=(const Awaiter&) = delete;
    ~Awaiter() { state_->waiting = nullptr; }  // the coroutine may be dropped while it waits

    bool await_ready() const noexcept { return state_->value.has_value(); }
    void await_suspend(std::coroutine_handle<> waiting) const noexcept { state_->waiting = waiting; }
    T await_resume() const { return std::move(*state_->value); }

   private:
    std::shared_ptr<State> state_;
  };

 private:
  std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace tavelle::x11
