#pragma once

#include <coroutine>
#include <exception>
#include <optional>
#include <utility>
#include <variant>

namespace tavelle {

template <typename T>
class Task;

namespace detail {

// What a task's frame keeps whatever it returns: who waits for it, and how control goes back there.
class TaskPromiseBase {
 public:
  struct FinalAwaiter {
    bool await_ready() const noexcept { return false; }
    template <typename Promise>
    std::coroutine_handle<> await_suspend(std::coroutine_handle<Promise> finished) const noexcept {
      const auto waiting = finished.promise().continuation_;
      return waiting ? waiting : std::noop_coroutine();
    }
    void await_resume() const noexcept {}
  };

  std::suspend_always initial_suspend() const noexcept { return {}; }
  FinalAwaiter final_suspend() const noexcept { return {}; }
  void resumeWhenDone(std::coroutine_handle<> waiting) noexcept { continuation_ = waiting; }

 private:
  std::coroutine_handle<> continuation_;
};

template <typename T>
class TaskPromise : public TaskPromiseBase {
 public:
  Task<T> get_return_object() noexcept;
  void return_value(T value) { outcome_.template emplace<1>(std::move(value)); }
  void unhandled_exception() noexcept { outcome_.template emplace<2>(std::current_exception()); }
  T take() {
    if (auto* error = std::get_if<2>(&outcome_)) std::rethrow_exception(*error);
    return std::move(std::get<1>(outcome_));
  }

 private:
  std::variant<std::monostate, T, std::exception_ptr> outcome_;
};

template <>
class TaskPromise<void> : public TaskPromiseBase {
 public:
  Task<void> get_return_object() noexcept;
  void return_void() const noexcept {}
  void unhandled_exception() noexcept { error_ = std::current_exception(); }
  void take() const {
    if (error_) std::rethrow_exception(error_);
  }

 private:
  std::exception_ptr error_;
};

}  // namespace detail

// A lazy coroutine: nothing runs until it is awaited, and it runs on the thread that awaits it until it suspends.
// Move-only; the task owns its frame, so dropping an unfinished task destroys what the coroutine holds. It is awaited
// once; the result or the exception passes to the awaiter, which resumes by symmetric transfer on the thread where the
// coroutine ended. Coroutines take their parameters by value and are never capturing lambdas.
template <typename T = void>
class [[nodiscard]] Task {
 public:
  using promise_type = detail::TaskPromise<T>;

  explicit Task(std::coroutine_handle<promise_type> frame) noexcept : frame_(frame) {}
  Task(Task&& other) noexcept : frame_(std::exchange(other.frame_, nullptr)) {}
  Task& operator=(Task&& other) noexcept {
    std::swap(frame_, other.frame_);
    return *this;
  }
  Task(const Task&) = delete;
  Task& operator=(const Task&) = delete;
  ~Task() {
    if (frame_) frame_.destroy();
  }

  auto operator co_await() const noexcept {
    struct Awaiter {
      std::coroutine_handle<promise_type> frame;
      bool await_ready() const noexcept { return false; }
      std::coroutine_handle<> await_suspend(std::coroutine_handle<> waiting) const noexcept {
        frame.promise().resumeWhenDone(waiting);
        return frame;
      }
      T await_resume() const { return frame.promise().take(); }
    };
    return Awaiter{frame_};
  }

 private:
  std::coroutine_handle<promise_type> frame_;
};

template <typename T>
Task<T> detail::TaskPromise<T>::get_return_object() noexcept {
  return Task<T>{std::coroutine_handle<TaskPromise>::from_promise(*this)};
}

inline Task<void> detail::TaskPromise<void>::get_return_object() noexcept {
  return Task<void>{std::coroutine_handle<TaskPromise>::from_promise(*this)};
}

}  // namespace tavelle
