#pragma once

#include "concurrency/MainActor.h"

namespace tavelle {

// The main dispatch queue.
//
// NOTE: the queue's clock stands still while the machine sleeps, so a delay during which it slept ends that much later.
// Never early.
class DispatchMainActor : public MainActor {
 public:
  void post(std::function<void()> job) override;
  void postAfter(std::chrono::milliseconds delay, std::function<void()> job) override;
};

}  // namespace tavelle
