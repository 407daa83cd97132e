#pragma once

#include "concurrency/MainActor.h"
#include "concurrency/SerialExecutor.h"
#include "platform/fake/EventLog.h"

#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <utility>

namespace tavelle {

// A main loop that a test cranks by hand, with a clock that stands still until the test moves it.
class FakeMainActor : public MainActor {
 public:
  explicit FakeMainActor(EventLog& log) : log_(log) {}

  void post(std::function<void()> job) override { jobs_.push_back(std::move(job)); }
  void postAfter(std::chrono::milliseconds delay, std::function<void()> job) override;

  // Runs what is due, and what that brings, until nothing is due any more. The clock does not move.
  void runUntilIdle();

  // Moves the clock forward, running what falls due on the way at its own time.
  void advance(std::chrono::milliseconds duration);

  // Runs until nothing is left to run or to wait for, moving the clock as far as it takes.
  void runToEnd();

  std::chrono::milliseconds now() const { return now_; }
  bool isIdle() const { return jobs_.empty() && timers_.empty(); }

 private:
  void fireNextTimer();

  EventLog& log_;
  std::deque<std::function<void()>> jobs_;
  std::multimap<std::chrono::milliseconds, std::pair<std::chrono::milliseconds, std::function<void()>>> timers_;
  std::chrono::milliseconds now_{0};
};

// An actor's executor that shares the hand-cranked loop, so that a run has one order.
class FakeSerialExecutor : public SerialExecutor {
 public:
  explicit FakeSerialExecutor(FakeMainActor& loop) : loop_(loop) {}
  void post(std::function<void()> job) override { loop_.post(std::move(job)); }

 private:
  FakeMainActor& loop_;
};

}  // namespace tavelle
