#pragma once

#include "concurrency/SerialExecutor.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace tavelle {

// A serial executor on a thread of its own, which starts with the first job and then waits for the next: a run has a
// few bursts of jobs, and a thread for each would cost more than the jobs do. `post` throws std::system_error where
// there can be no thread; the job is then forgotten. The destructor waits for the jobs that were posted.
class LinuxSerialExecutor : public SerialExecutor {
 public:
  LinuxSerialExecutor() = default;
  ~LinuxSerialExecutor() override;
  LinuxSerialExecutor(const LinuxSerialExecutor&) = delete;
  LinuxSerialExecutor& operator=(const LinuxSerialExecutor&) = delete;

  void post(std::function<void()> job) override;

 private:
  void runJobs();
  std::function<void()> nextJob();

  std::mutex mutex_;  // guards the rest
  std::deque<std::function<void()>> jobs_;
  bool isEnding_ = false;
  std::condition_variable hasNews_;
  std::thread thread_;
};

}  // namespace tavelle
