#pragma once

#include "observation/Subscription.h"
#include "platform/linux/x11/Connection.h"

#include <functional>
#include <optional>

namespace tavelle::x11 {

// Asks an application whether it has come to the end of its events (_NET_WM_PING).
// A client handles events in the order in which they came, so its answer says that it has handled all that was sent to
// it before. Root events are selected only while an answer is awaited. Main thread only.
class WindowPing {
 public:
  // `answered` is called when the answer comes, and also when the window goes away, for then none will.
  WindowPing(Connection& connection, std::function<void()> answered);
  WindowPing(const WindowPing&) = delete;
  WindowPing& operator=(const WindowPing&) = delete;

  // Pings the application window in which `window` stands, in place of an earlier ping. False where that window does
  // not say that it answers.
  bool send(xcb_window_t window);
  void cancel();

 private:
  struct Awaited {
    xcb_window_t window;
    xcb_timestamp_t time;
    Subscription answers;
    Subscription windowEvents;
  };

  void handle(const xcb_generic_event_t& event);
  bool isAnswer(const xcb_client_message_event_t& message) const;
  xcb_window_t pingableWindow(xcb_window_t window) const;

  Connection& connection_;
  const xcb_atom_t protocols_;
  const xcb_atom_t ping_;
  const xcb_atom_t state_;
  std::function<void()> answered_;
  std::optional<Awaited> awaited_;
  Subscription events_;
};

}  // namespace tavelle::x11
