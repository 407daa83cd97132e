#include "platform/linux/MainActor.h"

#include "tests/platform/contracts/MainActorContract.h"
#include "tests/platform/linux/MainLoop.h"

#include <gtest/gtest.h>

#include <ctime>
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

struct GLibLoop {
  MainActor& actor() { return loop; }
  static std::chrono::nanoseconds now() { return continuousClock(); }
  static bool waitUntil(const std::function<bool()>& isTrue) { return tests::waitUntil(isTrue); }

  GLibMainActor loop;
};

INSTANTIATE_TYPED_TEST_SUITE_P(GLib, MainActorContract, GLibLoop);

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
