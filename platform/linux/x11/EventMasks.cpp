#include "platform/linux/x11/EventMasks.h"

namespace tavelle::x11 {

EventMasks::EventMasks(xcb_connection_t* xcb) : state_(std::make_shared<State>(State{xcb, {}})) {}

Subscription EventMasks::select(xcb_window_t window, std::uint32_t mask) {
  state_->masks[window].insert(mask);
  state_->tellServer(window);
  return Subscription{[weak = std::weak_ptr{state_}, window, mask] {
    const auto state = weak.lock();
    if (!state) return;
    auto& masks = state->masks[window];
    masks.erase(masks.find(mask));
    state->tellServer(window);
    if (masks.empty()) state->masks.erase(window);
  }};
}

void EventMasks::State::tellServer(xcb_window_t window) {
  std::uint32_t all = XCB_EVENT_MASK_NO_EVENT;
  for (const auto mask : masks[window]) all |= mask;
  xcb_change_window_attributes(xcb, window, XCB_CW_EVENT_MASK, &all);
}

}  // namespace tavelle::x11
