#include "platform/macos/SerialExecutor.h"

#include <utility>

namespace tavelle {

DispatchSerialExecutor::DispatchSerialExecutor()
    : queue_(dispatch_queue_create("app.tavelle.Tavelle.executor", DISPATCH_QUEUE_SERIAL)) {}

DispatchSerialExecutor::~DispatchSerialExecutor() {
  dispatch_sync(queue_, ^{
                });
}

void DispatchSerialExecutor::post(std::function<void()> job) {
  const auto owned = std::move(job);
  dispatch_async(queue_, ^{
    owned();
  });
}

}  // namespace tavelle
