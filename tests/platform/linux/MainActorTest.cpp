#include "platform/linux/MainActor.h"

#include "tests/platform/linux/MainLoop.h"

#include <gtest/gtest.h>

#include <ctime>
#include <numeric>
#include <thread>
#include <vector>

namespace tavelle::tests {
namespace {

using namespace std::chrono_literals;

std::chrono::nanoseconds continuousClock() {
  timespec time{};
  clock_gettime(CLOCK_BOOTTIME, &time);
  return std::chrono::seconds{time.tv_sec} + std::chrono::nanoseconds{time.tv_nsec};
}

Task<void> recordSleep(MainActor& actor, std::chrono::milliseconds duration, std::chrono::nanoseconds& slept) {
  const auto start = continuousClock();
  co_await actor.sleep(duration);
  slept = continuousClock() - start;
}

TEST(GLibMainActor, runsPostedJobsInTheirOrder) {
  GLibMainActor actor;
  std::vector<int> ran;
  for (int job = 0; job < 100; ++job) actor.post([&ran, job] { ran.push_back(job); });
  ASSERT_TRUE(waitUntil([&] { return ran.size() == 100; }));
  std::vector<int> expected(100);
  std::iota(expected.begin(), expected.end(), 0);
  EXPECT_EQ(ran, expected);
}

TEST(GLibMainActor, runsNothingBeforePostReturned) {
  GLibMainActor actor;
  bool hasRun = false;
  actor.post([&] { hasRun = true; });
  EXPECT_FALSE(hasRun);
  EXPECT_TRUE(waitUntil([&] { return hasRun; }));
}

TEST(GLibMainActor, runsAJobPostedByAJobInALaterTurn) {
  GLibMainActor actor;
  bool hasRun = false;
  bool ranInside = false;
  actor.post([&] { actor.post([&] { hasRun = true; }); });
  actor.post([&] { ranInside = hasRun; });
  ASSERT_TRUE(waitUntil([&] { return hasRun; }));
  EXPECT_FALSE(ranInside);
}

TEST(GLibMainActor, letsOtherSourcesHaveTheirTurnBetweenJobsThatPostEachOther) {
  GLibMainActor actor;
  bool isOtherServed = false;
  const auto other = makeSource("other", [&] { isOtherServed = true; });
  g_source_set_ready_time(other.get(), 0);
  std::function<void()> again = [&] { actor.post(again); };
  actor.post(again);
  EXPECT_TRUE(waitUntil([&] { return isOtherServed; }));
}

TEST(GLibMainActor, takesJobsFromManyThreadsAndKeepsEachOnesOrder) {
  constexpr int perThread = 2'000;
  GLibMainActor actor;
  std::vector<std::vector<int>> ran(4);
  std::vector<std::jthread> threads;
  for (auto& own : ran) {
    threads.emplace_back([&actor, &own] {
      for (int job = 0; job < perThread; ++job) actor.post([&own, job] { own.push_back(job); });
    });
  }
  for (auto& own : ran) {
    ASSERT_TRUE(waitUntil([&] { return own.size() == perThread; }));
    EXPECT_TRUE(std::is_sorted(own.begin(), own.end()));
  }
}

TEST(GLibMainActor, wakesALoopThatWaits) {
  GLibMainActor actor;
  std::thread::id ranOn;
  std::jthread other{[&] { actor.post([&] { ranOn = std::this_thread::get_id(); }); }};
  ASSERT_TRUE(waitUntil([&] { return ranOn != std::thread::id{}; }));
  EXPECT_EQ(ranOn, std::this_thread::get_id());
}

TEST(GLibMainActor, neverWakesASleeperEarly) {
  GLibMainActor actor;
  for (const auto duration : {0ms, 1ms, 2ms, 7ms, 20ms}) {
    std::chrono::nanoseconds slept{-1};
    actor.start(recordSleep(actor, duration, slept));
    ASSERT_TRUE(waitUntil([&] { return slept.count() >= 0; }));
    EXPECT_GE(slept, duration);
  }
}

TEST(GLibMainActor, wakesSleepersInTheOrderOfTheirDeadlines) {
  GLibMainActor actor;
  std::vector<int> woke;
  actor.postAfter(9ms, [&] { woke.push_back(3); });
  actor.postAfter(1ms, [&] { woke.push_back(1); });
  actor.postAfter(5ms, [&] { woke.push_back(2); });
  ASSERT_TRUE(waitUntil([&] { return woke.size() == 3; }));
  EXPECT_EQ(woke, (std::vector{1, 2, 3}));
}

TEST(GLibMainActor, takesDelaysOfAnySize) {
  GLibMainActor actor;
  bool hasWoken = false;
  actor.postAfter(std::chrono::milliseconds::max(), [] { FAIL() << "woke ages early"; });
  actor.postAfter(std::chrono::milliseconds::min(), [&] { hasWoken = true; });
  EXPECT_TRUE(waitUntil([&] { return hasWoken; }));
}

TEST(GLibMainActor, servesASleeperThatComesWhileAnotherSleepsLonger) {
  GLibMainActor actor;
  bool hasWoken = false;
  actor.postAfter(1h, [] { FAIL() << "woke an hour early"; });
  actor.postAfter(1ms, [&] { hasWoken = true; });
  EXPECT_TRUE(waitUntil([&] { return hasWoken; }));
}

TEST(GLibMainActor, leavesTheLoopIdleWhenItHasNoJob) {
  GLibMainActor actor;
  bool hasRun = false;
  actor.post([&] { hasRun = true; });
  actor.postAfter(1h, [] {});
  ASSERT_TRUE(waitUntil([&] { return hasRun; }));
  serveReady();
  EXPECT_FALSE(g_main_context_pending(nullptr));
}

TEST(GLibMainActor, dropsWaitingJobsWhenItEnds) {
  const auto held = std::make_shared<int>();
  {
    GLibMainActor actor;
    actor.post([held] { FAIL() << "ran after the end"; });
    actor.postAfter(0ms, [held] { FAIL() << "ran after the end"; });
  }
  serveReady();
  EXPECT_EQ(held.use_count(), 1);
}

}  // namespace
}  // namespace tavelle::tests
