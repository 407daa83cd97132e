#include "platform/macos/MainActor.h"

#include <dispatch/dispatch.h>

#include <utility>

namespace tavelle {

void DispatchMainActor::post(std::function<void()> job) {
  const auto owned = std::move(job);
  dispatch_async(dispatch_get_main_queue(), ^{
    owned();
  });
}

void DispatchMainActor::postAfter(std::chrono::milliseconds delay, std::function<void()> job) {
  const auto owned = std::move(job);
  const auto when = dispatch_time(DISPATCH_TIME_NOW, std::chrono::nanoseconds{delay}.count());
  dispatch_after(when, dispatch_get_main_queue(), ^{
    owned();
  });
}

}  // namespace tavelle
