#pragma once

#include "concurrency/SerialExecutor.h"

#include <dispatch/dispatch.h>

namespace tavelle {

// A serial dispatch queue.
class DispatchSerialExecutor : public SerialExecutor {
 public:
  DispatchSerialExecutor();

  // Waits until the jobs have ended. Not from one of them.
  ~DispatchSerialExecutor() override;

  void post(std::function<void()> job) override;

 private:
  dispatch_queue_t queue_;
};

}  // namespace tavelle
