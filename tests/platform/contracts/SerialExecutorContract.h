#pragma once

#include "concurrency/SerialExecutor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace tavelle::tests {

// What every backend's serial executor does. A `Backend` is made afresh for each test and has executor(),
// endExecutor(), home() and waitUntil(predicate), which serves home's loop; false where that takes unreasonably long.
//
// That jobs run on no main thread is the real backends' alone: the fake's share one hand-cranked loop.
//
//     INSTANTIATE_TYPED_TEST_SUITE_P(HandCranked, SerialExecutorContract, HandCrankedBackend);
template <typename Backend>
class SerialExecutorContract : public testing::Test {
 protected:
  struct Outcome {
    std::string result;
    std::string error;
    std::thread::id resumedOn;
    bool isThere = false;
  };

  SerialExecutor& executor() { return backend_.executor(); }
  MainActor& home() { return backend_.home(); }
  void endExecutor() { backend_.endExecutor(); }
  bool waitUntil(const std::function<bool()>& isTrue) { return backend_.waitUntil(isTrue); }

  // What comes of work that is run there.
  Outcome outcomeOf(Task<std::string> work) {
    Outcome outcome;
    home().start(follow(executor().run(std::move(work), home()), outcome));
    EXPECT_TRUE(waitUntil([&] { return outcome.isThere; }));
    return outcome;
  }

  static Task<std::string> saying(std::string word) { co_return word; }
  static Task<std::string> failing(std::string word) {
    throw std::runtime_error{word};
    co_return {};
  }

 private:
  static Task<void> follow(Task<std::string> work, Outcome& outcome) {
    try {
      outcome.result = co_await work;
    } catch (const std::exception& error) {
      outcome.error = error.what();
    }
    outcome.resumedOn = std::this_thread::get_id();
    outcome.isThere = true;
  }

  Backend backend_;
};

TYPED_TEST_SUITE_P(SerialExecutorContract);

TYPED_TEST_P(SerialExecutorContract, runsJobsOneAtATimeInTheirOrder) {
  constexpr int count = 5'000;
  std::vector<int> ran;  // no lock: that is what serial means
  std::atomic<int> inside = 0;
  std::atomic<bool> didOverlap = false;
  std::atomic<bool> isOver = false;
  for (int job = 0; job < count; ++job) {
    this->executor().post([&, job] {
      if (++inside != 1) didOverlap = true;
      ran.push_back(job);
      --inside;
    });
  }
  this->executor().post([&] { this->home().post([&] { isOver = true; }); });
  ASSERT_TRUE(this->waitUntil([&] { return isOver.load(); }));
  EXPECT_EQ(ran.size(), count);
  EXPECT_TRUE(std::is_sorted(ran.begin(), ran.end()));
  EXPECT_FALSE(didOverlap);
}

TYPED_TEST_P(SerialExecutorContract, runsNothingWithinPost) {
  bool isPosting = true;
  bool ranWithin = false;
  bool isOver = false;
  const auto poster = std::this_thread::get_id();
  this->executor().post([&] {
    if (std::this_thread::get_id() == poster) ranWithin = isPosting;
    this->home().post([&] { isOver = true; });
  });
  isPosting = false;
  ASSERT_TRUE(this->waitUntil([&] { return isOver; }));
  EXPECT_FALSE(ranWithin);
}

TYPED_TEST_P(SerialExecutorContract, takesJobsFromItsOwnJobs) {
  std::vector<int> ran;
  bool isOver = false;
  this->executor().post([&] {
    this->executor().post([&] {
      ran.push_back(2);
      this->home().post([&] { isOver = true; });
    });
    ran.push_back(1);
  });
  ASSERT_TRUE(this->waitUntil([&] { return isOver; }));
  EXPECT_EQ(ran, (std::vector{1, 2}));
}

TYPED_TEST_P(SerialExecutorContract, startsAgainWheneverItWasIdle) {
  for (int burst = 0; burst < 500; ++burst) {
    int ran = 0;
    for (int job = 0; job < 3; ++job) this->executor().post([&] { this->home().post([&] { ++ran; }); });
    ASSERT_TRUE(this->waitUntil([&] { return ran == 3; }));
  }
}

TYPED_TEST_P(SerialExecutorContract, bringsResultsHome) {
  const auto outcome = this->outcomeOf(this->saying("done"));
  EXPECT_EQ(outcome.result, "done");
  EXPECT_EQ(outcome.resumedOn, std::this_thread::get_id());
}

TYPED_TEST_P(SerialExecutorContract, bringsErrorsHome) {
  const auto outcome = this->outcomeOf(this->failing("no luck"));
  EXPECT_EQ(outcome.error, "no luck");
  EXPECT_EQ(outcome.resumedOn, std::this_thread::get_id());
}

TYPED_TEST_P(SerialExecutorContract, losesNothingThatWasPostedBeforeItsEnd) {
  bool hasRun = false;
  this->executor().post([&] { this->home().post([&] { hasRun = true; }); });
  this->endExecutor();
  EXPECT_TRUE(this->waitUntil([&] { return hasRun; }));
}

REGISTER_TYPED_TEST_SUITE_P(SerialExecutorContract, runsJobsOneAtATimeInTheirOrder, runsNothingWithinPost,
                            takesJobsFromItsOwnJobs, startsAgainWheneverItWasIdle, bringsResultsHome, bringsErrorsHome,
                            losesNothingThatWasPostedBeforeItsEnd);

}  // namespace tavelle::tests
