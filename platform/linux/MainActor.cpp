#include "platform/linux/MainActor.h"

#include "platform/FatalError.h"

#include <malloc.h>
#include <sys/timerfd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <limits>
#include <utility>

namespace tavelle {
namespace {

constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;
constexpr gint64 immediately = 0;
constexpr gint64 never = -1;

// CLOCK_BOOTTIME is the continuous clock: monotonic, and it counts while the machine sleeps.
std::int64_t now() {
  timespec time{};
  clock_gettime(CLOCK_BOOTTIME, &time);
  return time.tv_sec * nanosecondsPerSecond + time.tv_nsec;
}

std::int64_t deadlineAfter(std::chrono::milliseconds delay) {
  constexpr std::int64_t longest = std::numeric_limits<std::int64_t>::max() / 2;
  const std::int64_t milliseconds = std::clamp<std::int64_t>(delay.count(), 0, longest / 1'000'000);
  return now() + milliseconds * 1'000'000;
}

// A timer descriptor and not the loop's own timeout: that one is rounded to milliseconds and stops while the machine
// sleeps.
FileDescriptor makeTimer() {
  FileDescriptor timer{timerfd_create(CLOCK_BOOTTIME, TFD_NONBLOCK | TFD_CLOEXEC)};
  if (!timer) fatalError(std::string{"no timer: "} + std::strerror(errno));
  return timer;
}

}  // namespace

GLibMainActor::GLibMainActor()
    : timer_(makeTimer()),
      postedSource_(makeSource("main actor: posted", [this] { runPosted(); })),
      timerSource_(makeSource(
          "main actor: delayed", [this] { runDue(); }, timer_.get())) {}

void GLibMainActor::post(std::function<void()> job) {
  const std::lock_guard lock{mutex_};
  posted_.push_back(std::move(job));
  if (posted_.size() == 1) g_source_set_ready_time(postedSource_.get(), immediately);
}

void GLibMainActor::runPosted() {
  std::vector<std::function<void()>> jobs;
  {
    const std::lock_guard lock{mutex_};
    g_source_set_ready_time(postedSource_.get(), never);
    jobs.swap(posted_);
  }
  for (auto& job : jobs) std::exchange(job, nullptr)();
}

void GLibMainActor::postAfter(std::chrono::milliseconds delay, std::function<void()> job) {
  const auto added = delayed_.emplace(deadlineAfter(delay), std::move(job));
  if (added == delayed_.begin()) armTimer();
}

void GLibMainActor::runDue() {
  std::uint64_t expirations = 0;
  if (read(timer_.get(), &expirations, sizeof expirations) < 0) return;  // armed anew in the meantime
  const auto end = delayed_.upper_bound(now());
  std::vector<std::function<void()>> due;
  for (auto at = delayed_.begin(); at != end; ++at) due.push_back(std::move(at->second));
  delayed_.erase(delayed_.begin(), end);
  armTimer();
  for (auto& job : due) std::exchange(job, nullptr)();
  // A run's last deadline has passed: the memory it needed goes back to the system.
  if (delayed_.empty() && !isWorking()) malloc_trim(0);
}

void GLibMainActor::armTimer() const {
  itimerspec setting{};
  if (!delayed_.empty()) {
    const auto deadline = delayed_.begin()->first;
    setting.it_value = {deadline / nanosecondsPerSecond, deadline % nanosecondsPerSecond};
  }
  timerfd_settime(timer_.get(), TFD_TIMER_ABSTIME, &setting, nullptr);
}

}  // namespace tavelle
