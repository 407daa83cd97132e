#pragma once

#include "concurrency/SerialExecutor.h"

#include <deque>
#include <mutex>
#include <thread>

namespace tavelle {

// A serial executor on a thread of its own, which is there only while there are jobs: an idle program has none, and a
// run has a few bursts of jobs. The destructor waits for the jobs that were posted.
class LinuxSerialExecutor : public SerialExecutor {
 public:
  LinuxSerialExecutor() = default;
  ~LinuxSerialExecutor() override;
  LinuxSerialExecutor(const LinuxSerialExecutor&) = delete;
  LinuxSerialExecutor& operator=(const LinuxSerialExecutor&) = delete;

  // Throws std::system_error where the system has no thread to give; the job is then not posted.
  void post(std::function<void()> job) override;

 private:
  void startThread();
  void runJobs();
  std::function<void()> nextJob();

  std::mutex mutex_;  // guards the rest
  std::deque<std::function<void()>> jobs_;
  bool isRunning_ = false;  // whether the thread will look for another job
  std::thread thread_;
};

}  // namespace tavelle
