#pragma once

#include "concurrency/Executor.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <utility>

namespace tavelle::tests {

// Runs its jobs on the thread that cranks it, and only then.
class QueueExecutor : public Executor {
 public:
  void post(std::function<void()> job) override {
    {
      const std::lock_guard lock{mutex_};
      jobs_.push_back(std::move(job));
    }
    arrived_.notify_one();
  }

  // Runs jobs as they come until `isDone`. False where that takes longer than `limit`.
  template <typename Predicate>
  bool runUntil(Predicate isDone, std::chrono::milliseconds limit = std::chrono::seconds(30)) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!isDone()) {
      std::unique_lock lock{mutex_};
      if (!arrived_.wait_until(lock, deadline, [this] { return !jobs_.empty(); })) return false;
      const auto job = std::move(jobs_.front());
      jobs_.pop_front();
      lock.unlock();
      job();
    }
    return true;
  }

  // False where none comes for half a minute. Runs nothing.
  bool waitForJob() {
    std::unique_lock lock{mutex_};
    return arrived_.wait_for(lock, std::chrono::seconds(30), [this] { return !jobs_.empty(); });
  }

  // The jobs that wait, without running them.
  std::size_t waiting() {
    const std::lock_guard lock{mutex_};
    return jobs_.size();
  }

 private:
  std::mutex mutex_;
  std::condition_variable arrived_;
  std::deque<std::function<void()>> jobs_;
};

}  // namespace tavelle::tests
