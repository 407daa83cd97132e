#pragma once

#include "concurrency/MainActor.h"
#include "concurrency/Task.h"
#include "tests/platform/x11/EventLoop.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <utility>

namespace tavelle::x11::tests {

// A task that runs on the main actor, and its result once it is there.
template <typename T>
class Running {
 public:
  Running(MainActor& actor, Task<T> task) { actor.start(keep(std::move(task), result_)); }

  bool hasEnded() const { return result_->has_value(); }

  // Serves the main loop until the task has ended. A task that does not end in time ends the test program.
  T result() {
    if (!waitUntil([this] { return hasEnded(); })) {
      ADD_FAILURE() << "a task did not end";
      std::abort();
    }
    return std::move(**result_);
  }

 private:
  using Result = std::shared_ptr<std::optional<T>>;

  static Task<void> keep(Task<T> task, Result result) { result->emplace(co_await task); }

  Result result_ = std::make_shared<std::optional<T>>();
};

template <typename T>
T resultOf(MainActor& actor, Task<T> task) {
  return Running<T>{actor, std::move(task)}.result();
}

}  // namespace tavelle::x11::tests
