#pragma once

#include "observation/Subject.h"
#include "platform/linux/x11/Connection.h"

#include <functional>
#include <memory>

namespace tavelle::x11 {

// That a button of the pointer went down, in whichever window. The server is asked for it only as long as somebody
// wants to know.
class PointerPresses {
 public:
  explicit PointerPresses(Connection& connection);

  // Calls `onPress` for each, for as long as the token lives; perhaps twice, once for each device that the server
  // counts the button to.
  Subscription subscribe(std::function<void()> onPress);

 private:
  struct State {
    Connection& connection;
    Subject<> presses;
    int wanted = 0;

    void watch(bool isOn) const;
    void received(const xcb_generic_event_t& event) const;
  };

  std::shared_ptr<State> state_;
  Subscription events_;
};

}  // namespace tavelle::x11
