#include "platform/fake/MainActor.h"

#include <algorithm>

namespace tavelle {

void FakeMainActor::postAfter(std::chrono::milliseconds delay, std::function<void()> job) {
  constexpr auto ages = std::chrono::years{1000};
  timers_.emplace(now_ + std::clamp<std::chrono::milliseconds>(delay, {}, ages), std::pair{delay, std::move(job)});
}

void FakeMainActor::runUntilIdle() {
  while (!jobs_.empty()) {
    const auto job = std::move(jobs_.front());
    jobs_.pop_front();
    job();
  }
}

void FakeMainActor::fireNextTimer() {
  auto timer = timers_.extract(timers_.begin());
  now_ = timer.key();
  log_.add("waited " + std::to_string(timer.mapped().first.count()));
  timer.mapped().second();
  runUntilIdle();
}

void FakeMainActor::advance(std::chrono::milliseconds duration) {
  const auto end = now_ + duration;
  runUntilIdle();
  while (!timers_.empty() && timers_.begin()->first <= end) fireNextTimer();
  now_ = end;
}

void FakeMainActor::runToEnd() {
  runUntilIdle();
  while (!timers_.empty()) fireNextTimer();
}

}  // namespace tavelle
