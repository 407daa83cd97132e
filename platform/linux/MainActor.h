#pragma once

#include "concurrency/MainActor.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/GSourcePtr.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <vector>

namespace tavelle {

// The main actor over the default GLib main context. Made and destroyed on the main thread; jobs that are still waiting
// then are dropped. It wakes the process for nothing but its jobs.
class GLibMainActor : public MainActor {
 public:
  GLibMainActor();

  // Jobs posted by a job run in a later turn of the loop, so that the loop's other sources get theirs.
  void post(std::function<void()> job) override;

  // Jobs of one deadline run in the order in which they came.
  void postAfter(std::chrono::milliseconds delay, std::function<void()> job) override;

 private:
  using Nanoseconds = std::int64_t;

  void runPosted();
  void runDue();
  void armTimer() const;

  std::mutex mutex_;  // guards posted_
  std::vector<std::function<void()>> posted_;
  std::multimap<Nanoseconds, std::function<void()>> delayed_;  // by deadline
  FileDescriptor timer_;
  GSourcePtr postedSource_;
  GSourcePtr timerSource_;
};

}  // namespace tavelle
