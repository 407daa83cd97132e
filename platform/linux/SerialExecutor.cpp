#include "platform/linux/SerialExecutor.h"

#include <utility>

namespace tavelle {

LinuxSerialExecutor::~LinuxSerialExecutor() {
  {
    const std::lock_guard lock{mutex_};
    isEnding_ = true;
  }
  hasNews_.notify_one();
  if (thread_.joinable()) thread_.join();
}

void LinuxSerialExecutor::post(std::function<void()> job) {
  {
    const std::lock_guard lock{mutex_};
    if (!thread_.joinable()) thread_ = std::thread{[this] { runJobs(); }};
    jobs_.push_back(std::move(job));
  }
  hasNews_.notify_one();
}

void LinuxSerialExecutor::runJobs() {
  while (const auto job = nextJob()) job();
}

// None once the executor ends and all jobs are done.
std::function<void()> LinuxSerialExecutor::nextJob() {
  std::unique_lock lock{mutex_};
  hasNews_.wait(lock, [this] { return isEnding_ || !jobs_.empty(); });
  if (jobs_.empty()) return nullptr;
  auto job = std::move(jobs_.front());
  jobs_.pop_front();
  return job;
}

}  // namespace tavelle
