#include "platform/linux/SerialExecutor.h"

#include <utility>

namespace tavelle {

LinuxSerialExecutor::~LinuxSerialExecutor() {
  if (thread_.joinable()) thread_.join();
}

void LinuxSerialExecutor::post(std::function<void()> job) {
  const std::lock_guard lock{mutex_};
  if (!isRunning_) startThread();  // it waits for the lock
  jobs_.push_back(std::move(job));
}

void LinuxSerialExecutor::startThread() {
  if (thread_.joinable()) thread_.join();  // it has found no job and is about to end: it takes no lock any more
  thread_ = std::thread{[this] { runJobs(); }};
  isRunning_ = true;
}

void LinuxSerialExecutor::runJobs() {
  while (const auto job = nextJob()) job();
}

std::function<void()> LinuxSerialExecutor::nextJob() {
  const std::lock_guard lock{mutex_};
  if (jobs_.empty()) {
    isRunning_ = false;
    return nullptr;
  }
  auto job = std::move(jobs_.front());
  jobs_.pop_front();
  return job;
}

}  // namespace tavelle
