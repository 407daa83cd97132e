#include "platform/macos/renderer/EventMonitors.h"

#include <utility>

namespace tavelle::appkit {

static_assert(view::eventMaskKeyDown == NSEventMaskKeyDown);

view::EventMonitors::Token MacEventMonitors::addLocalMonitorForEventsMatchingMask(std::uint64_t mask, Block block) {
  const auto owned = std::move(block);
  id const monitor =
      [NSEvent addLocalMonitorForEventsMatchingMask:static_cast<NSEventMask>(mask)
                                            handler:^NSEvent*(NSEvent* event) {
                                              const view::KeyDown key{event.keyCode,
                                                                      static_cast<std::uint32_t>(event.modifierFlags)};
                                              return owned(key) ? event : nil;
                                            }];
  monitors_.emplace(++last_, monitor);
  return last_;
}

void MacEventMonitors::removeMonitor(Token token) {
  const auto found = monitors_.find(token);
  if (found == monitors_.end()) return;
  if (found->second) [NSEvent removeMonitor:found->second];
  monitors_.erase(found);
}

}  // namespace tavelle::appkit
