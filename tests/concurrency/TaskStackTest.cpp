#include "concurrency/Task.h"

#include <gtest/gtest.h>

// Built without sanitizers, which keep a frame for every call and so leave no room for symmetric transfer to show.

namespace tavelle::tests {
namespace {

// A coroutine that runs when it is called, to its end.
struct Started {
  struct promise_type {
    Started get_return_object() const noexcept { return {}; }
    std::suspend_never initial_suspend() const noexcept { return {}; }
    std::suspend_never final_suspend() const noexcept { return {}; }
    void return_void() const noexcept {}
    void unhandled_exception() const noexcept { std::terminate(); }
  };
};

Task<int> one() {
  co_return 1;
}

Started count(int times, int* sum) {
  for (int i = 0; i < times; ++i) *sum += co_await one();
}

TEST(TaskStack, doesNotGrowOverAMillionAwaitsOfCompleteTasks) {
  int sum = 0;
  count(1'000'000, &sum);
  EXPECT_EQ(sum, 1'000'000);
}

}  // namespace
}  // namespace tavelle::tests
