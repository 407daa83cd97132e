#include "concurrency/Task.h"

#include "platform/fake/MainActor.h"
#include "tests/support/Await.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>

namespace tavelle::tests {
namespace {

static_assert(!std::is_copy_constructible_v<Task<int>>);
static_assert(std::is_nothrow_move_constructible_v<Task<int>>);

Task<int> answering(int* runs) {
  ++*runs;
  co_return 42;
}

Task<std::string> failing() {
  throw std::runtime_error{"no luck"};
  co_return {};
}

Task<std::string> waitingFor(Task<std::string> inner) {
  co_return co_await inner + "!";
}

Task<std::unique_ptr<int>> movingOnly() {
  co_return std::make_unique<int>(7);
}

Task<void> holding(std::shared_ptr<int> held, MainActor& actor) {
  co_await actor.sleep(std::chrono::hours{1});
  ++*held;
}

class TaskTest : public testing::Test {
 protected:
  EventLog log;
  FakeMainActor loop{log};
};

TEST_F(TaskTest, doesNothingUntilItIsAwaited) {
  int runs = 0;
  auto task = answering(&runs);
  EXPECT_EQ(runs, 0);
  EXPECT_EQ(await(loop, std::move(task)), 42);
  EXPECT_EQ(runs, 1);
}

TEST_F(TaskTest, passesAnExceptionThroughEveryAwaiter) {
  try {
    await(loop, waitingFor(waitingFor(failing())));
    FAIL() << "nothing was thrown";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "no luck");
  }
}

TEST_F(TaskTest, returnsWhatCanOnlyBeMoved) {
  EXPECT_EQ(*await(loop, movingOnly()), 7);
}

TEST_F(TaskTest, freesWhatItHoldsWhenItIsDroppedUnawaited) {
  const auto held = std::make_shared<int>(0);
  { const auto task = holding(held, loop); }
  EXPECT_EQ(held.use_count(), 1);
}

}  // namespace
}  // namespace tavelle::tests
