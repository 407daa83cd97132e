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
  // dispatch_after takes the liberty of a tenth of the delay.
  const auto timer =
      dispatch_source_create(DISPATCH_SOURCE_TYPE_TIMER, 0, DISPATCH_TIMER_STRICT, dispatch_get_main_queue());
  dispatch_source_set_timer(timer, when, DISPATCH_TIME_FOREVER, 0);
  dispatch_source_set_event_handler(timer, ^{
    dispatch_source_cancel(timer);  // which lets go of this handler, and of the timer in it
    owned();
  });
  dispatch_activate(timer);
}

}  // namespace tavelle
