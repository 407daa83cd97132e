#pragma once

#include "concurrency/MainActor.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <numeric>
#include <thread>
#include <vector>

namespace tavelle::tests {

// What every backend's main actor does. A `Backend` is made afresh for each test and has actor(), now(), which is the
// time on the continuous clock, and waitUntil(predicate), which serves the loop; false where that takes unreasonably
// long.
//
//     INSTANTIATE_TYPED_TEST_SUITE_P(HandCranked, MainActorContract, HandCrankedBackend);
template <typename Backend>
class MainActorContract : public testing::Test {
 protected:
  MainActor& actor() { return backend_.actor(); }
  std::chrono::nanoseconds now() { return backend_.now(); }
  bool waitUntil(const std::function<bool()>& isTrue) { return backend_.waitUntil(isTrue); }

  // A job that notes its number.
  std::function<void()> noting(int number) {
    return [this, number] { ran.push_back(number); };
  }

  Task<void> noteAfter(std::chrono::milliseconds duration, int number) {
    started.push_back(number);
    const auto before = now();
    co_await actor().sleep(duration);
    slept = now() - before;
    ran.push_back(number);
  }

  static std::vector<int> numbersTo(int count) {
    std::vector<int> numbers(static_cast<std::size_t>(count));
    std::iota(numbers.begin(), numbers.end(), 0);
    return numbers;
  }

  std::vector<int> started;
  std::vector<int> ran;
  std::chrono::nanoseconds slept{-1};

 private:
  Backend backend_;
};

TYPED_TEST_SUITE_P(MainActorContract);

TYPED_TEST_P(MainActorContract, runsJobsInTheOrderInWhichTheyCame) {
  for (const int number : this->numbersTo(100)) this->actor().post(this->noting(number));
  ASSERT_TRUE(this->waitUntil([this] { return this->ran.size() == 100; }));
  EXPECT_EQ(this->ran, this->numbersTo(100));
}

TYPED_TEST_P(MainActorContract, runsNothingBeforePostReturned) {
  this->actor().post(this->noting(0));
  this->actor().postAfter(std::chrono::milliseconds{0}, this->noting(1));
  EXPECT_TRUE(this->ran.empty());
  EXPECT_TRUE(this->waitUntil([this] { return this->ran.size() == 2; }));
}

TYPED_TEST_P(MainActorContract, runsWhatAJobPostsAfterWhatWaitsAlready) {
  this->actor().post([this] {
    this->actor().post(this->noting(2));
    this->noting(0)();
  });
  this->actor().post(this->noting(1));
  ASSERT_TRUE(this->waitUntil([this] { return this->ran.size() == 3; }));
  EXPECT_EQ(this->ran, this->numbersTo(3));
}

TYPED_TEST_P(MainActorContract, runsTheJobsOfAnotherThreadOnItsOwn) {
  std::thread::id ranOn;
  std::thread{[&] {
    for (const int number : this->numbersTo(10)) this->actor().post(this->noting(number));
    this->actor().post([&ranOn] { ranOn = std::this_thread::get_id(); });
  }}.join();
  ASSERT_TRUE(this->waitUntil([&] { return ranOn != std::thread::id{}; }));
  EXPECT_EQ(ranOn, std::this_thread::get_id());
  EXPECT_EQ(this->ran, this->numbersTo(10));
}

TYPED_TEST_P(MainActorContract, startsATaskOnALaterTurnAndIsWorkingUntilItsEnd) {
  EXPECT_FALSE(this->actor().isWorking());
  this->actor().start(this->noteAfter(std::chrono::milliseconds{1}, 0));
  EXPECT_TRUE(this->started.empty());
  EXPECT_TRUE(this->actor().isWorking());
  ASSERT_TRUE(this->waitUntil([this] { return !this->started.empty(); }));
  EXPECT_TRUE(this->actor().isWorking());
  ASSERT_TRUE(this->waitUntil([this] { return !this->ran.empty(); }));
  EXPECT_TRUE(this->waitUntil([this] { return !this->actor().isWorking(); }));
}

TYPED_TEST_P(MainActorContract, neverWakesASleeperEarly) {
  for (const int milliseconds : {0, 1, 2, 7, 20}) {
    const std::chrono::milliseconds duration{milliseconds};
    this->ran.clear();
    this->actor().start(this->noteAfter(duration, 0));
    ASSERT_TRUE(this->waitUntil([this] { return !this->ran.empty(); }));
    EXPECT_GE(this->slept, duration);
  }
}

TYPED_TEST_P(MainActorContract, wakesSleepersInTheOrderOfTheirDeadlines) {
  std::chrono::nanoseconds posting{};
  // Each deadline counts from its own post: where these took as long as lies between two, they have another order.
  do {
    this->ran.clear();
    const auto before = this->now();
    this->actor().postAfter(std::chrono::milliseconds{9}, this->noting(2));
    this->actor().postAfter(std::chrono::milliseconds{1}, this->noting(0));
    this->actor().postAfter(std::chrono::milliseconds{5}, this->noting(1));
    posting = this->now() - before;
    ASSERT_TRUE(this->waitUntil([this] { return this->ran.size() == 3; }));
  } while (posting >= std::chrono::milliseconds{4});
  EXPECT_EQ(this->ran, this->numbersTo(3));
}

TYPED_TEST_P(MainActorContract, wakesSleepersOfOneDelayInTheOrderInWhichTheyCame) {
  for (const int number : this->numbersTo(20)) {
    this->actor().postAfter(std::chrono::milliseconds{2}, this->noting(number));
  }
  ASSERT_TRUE(this->waitUntil([this] { return this->ran.size() == 20; }));
  EXPECT_EQ(this->ran, this->numbersTo(20));
}

TYPED_TEST_P(MainActorContract, servesASleeperThatComesWhileAnotherSleepsLonger) {
  this->actor().postAfter(std::chrono::hours{1}, [] { FAIL() << "woke an hour early"; });
  this->actor().postAfter(std::chrono::milliseconds{1}, this->noting(0));
  EXPECT_TRUE(this->waitUntil([this] { return !this->ran.empty(); }));
}

TYPED_TEST_P(MainActorContract, takesDelaysOfAnySize) {
  this->actor().postAfter(std::chrono::milliseconds::max(), [] { FAIL() << "woke ages early"; });
  this->actor().postAfter(std::chrono::milliseconds::min(), this->noting(0));
  EXPECT_TRUE(this->waitUntil([this] { return !this->ran.empty(); }));
}

REGISTER_TYPED_TEST_SUITE_P(MainActorContract, runsJobsInTheOrderInWhichTheyCame, runsNothingBeforePostReturned,
                            runsWhatAJobPostsAfterWhatWaitsAlready, runsTheJobsOfAnotherThreadOnItsOwn,
                            startsATaskOnALaterTurnAndIsWorkingUntilItsEnd, neverWakesASleeperEarly,
                            wakesSleepersInTheOrderOfTheirDeadlines, wakesSleepersOfOneDelayInTheOrderInWhichTheyCame,
                            servesASleeperThatComesWhileAnotherSleepsLonger, takesDelaysOfAnySize);

}  // namespace tavelle::tests
