#include "platform/linux/SerialExecutor.h"

#include "platform/linux/MainActor.h"
#include "tests/platform/linux/MainLoop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace tavelle::tests {
namespace {

Task<std::thread::id> ownThread() {
  co_return std::this_thread::get_id();
}

Task<int> failure() {
  throw std::runtime_error{"failed"};
  co_return 0;
}

struct Outcome {
  std::thread::id ranOn;
  std::thread::id resumedOn;
  std::string error;
  bool isThere = false;
};

Task<void> runOwnThread(SerialExecutor& executor, MainActor& home, Outcome& outcome) {
  outcome.ranOn = co_await executor.run(ownThread(), home);
  outcome.resumedOn = std::this_thread::get_id();
  outcome.isThere = true;
}

Task<void> runFailure(SerialExecutor& executor, MainActor& home, Outcome& outcome) {
  try {
    co_await executor.run(failure(), home);
  } catch (const std::exception& error) {
    outcome.error = error.what();
  }
  outcome.resumedOn = std::this_thread::get_id();
  outcome.isThere = true;
}

TEST(LinuxSerialExecutor, runsJobsOneAtATimeInTheirOrder) {
  constexpr int count = 5'000;
  std::vector<int> ran;  // no lock: that is what serial means
  std::atomic<int> inside = 0;
  std::atomic<bool> didOverlap = false;
  {
    LinuxSerialExecutor executor;
    for (int job = 0; job < count; ++job) {
      executor.post([&, job] {
        if (++inside != 1) didOverlap = true;
        ran.push_back(job);
        --inside;
      });
    }
  }
  EXPECT_EQ(ran.size(), count);
  EXPECT_TRUE(std::is_sorted(ran.begin(), ran.end()));
  EXPECT_FALSE(didOverlap);
}

TEST(LinuxSerialExecutor, runsWorkOffTheMainThreadAndComesHome) {
  GLibMainActor home;
  LinuxSerialExecutor executor;
  Outcome outcome;
  home.start(runOwnThread(executor, home, outcome));
  ASSERT_TRUE(waitUntil([&] { return outcome.isThere; }));
  EXPECT_NE(outcome.ranOn, std::this_thread::get_id());
  EXPECT_EQ(outcome.resumedOn, std::this_thread::get_id());
}

TEST(LinuxSerialExecutor, bringsErrorsHome) {
  GLibMainActor home;
  LinuxSerialExecutor executor;
  Outcome outcome;
  home.start(runFailure(executor, home, outcome));
  ASSERT_TRUE(waitUntil([&] { return outcome.isThere; }));
  EXPECT_EQ(outcome.error, "failed");
  EXPECT_EQ(outcome.resumedOn, std::this_thread::get_id());
}

TEST(LinuxSerialExecutor, startsAgainWheneverItWasIdle) {
  GLibMainActor home;
  LinuxSerialExecutor executor;
  for (int burst = 0; burst < 500; ++burst) {
    int ran = 0;
    for (int job = 0; job < 3; ++job) executor.post([&] { home.post([&] { ++ran; }); });
    ASSERT_TRUE(waitUntil([&] { return ran == 3; }));
  }
}

TEST(LinuxSerialExecutor, finishesWhatWasPostedBeforeItEnds) {
  bool hasRun = false;
  {
    LinuxSerialExecutor executor;
    executor.post([&] { hasRun = true; });
  }
  EXPECT_TRUE(hasRun);
}

}  // namespace
}  // namespace tavelle::tests
