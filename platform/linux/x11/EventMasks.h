#pragma once

#include "observation/Subscription.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <map>
#include <memory>
#include <set>

namespace tavelle::x11 {

// Which events of which windows this client wants. The server keeps one mask for each window and client; here several
// parts of the program may ask for events of one window, and the server is told the union.
class EventMasks {
 public:
  explicit EventMasks(xcb_connection_t* xcb);

  // The events in `mask` come for as long as the token lives. A window that is gone is no error.
  Subscription select(xcb_window_t window, std::uint32_t mask);

 private:
  struct State {
    xcb_connection_t* xcb;
    std::map<xcb_window_t, std::multiset<std::uint32_t>> masks;

    void tellServer(xcb_window_t window);
  };
  std::shared_ptr<State> state_;
};

}  // namespace tavelle::x11
