#pragma once

#include "concurrency/Task.h"
#include "platform/fake/MainActor.h"

#include <exception>
#include <optional>
#include <utility>

namespace tavelle::tests {

namespace detail {

template <typename T>
Task<void> keepOutcome(Task<T> work, std::optional<T>* result, std::exception_ptr* error) {
  try {
    result->emplace(co_await work);
  } catch (...) {
    *error = std::current_exception();
  }
}

inline Task<void> keepError(Task<void> work, std::exception_ptr* error) {
  try {
    co_await work;
  } catch (...) {
    *error = std::current_exception();
  }
}

}  // namespace detail

// Runs `work` to its end on the hand-cranked loop, and returns its result or throws what it threw. The loop must be
// able to get there by itself: everything that the work waits for has been laid down.
template <typename T>
T await(FakeMainActor& loop, Task<T> work) {
  std::optional<T> result;
  std::exception_ptr error;
  loop.start(detail::keepOutcome(std::move(work), &result, &error));
  loop.runToEnd();
  if (error) std::rethrow_exception(error);
  return std::move(result).value();
}

inline void await(FakeMainActor& loop, Task<void> work) {
  std::exception_ptr error;
  loop.start(detail::keepError(std::move(work), &error));
  loop.runToEnd();
  if (error) std::rethrow_exception(error);
}

}  // namespace tavelle::tests
