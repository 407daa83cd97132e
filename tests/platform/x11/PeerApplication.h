#pragma once

#include "observation/Subscription.h"
#include "platform/linux/x11/Connection.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace tavelle::x11::tests {

// An application as the window manager sees it: a window with another in it that has the keyboard focus. It is a client
// of its own, served by the test's main loop.
class PeerApplication {
 public:
  enum class Protocols { none, ping };

  explicit PeerApplication(Protocols protocols = Protocols::ping);
  PeerApplication(const PeerApplication&) = delete;
  PeerApplication& operator=(const PeerApplication&) = delete;

  Connection& connection() { return *connection_; }
  xcb_window_t focus() const { return focus_; }

  // What is done when a ping comes. Until the test sets it, pings are answered at once.
  void onPing(std::function<void()> handler) { onPing_ = std::move(handler); }
  // To whom the answer is sent: those who selected these events of the root window.
  void sendAnswersTo(std::uint32_t rootEvents) { answerMask_ = rootEvents; }
  // Answers the last ping; with an offset, another that was sent so much later.
  void answerPing(int timeOffset = 0);
  int pings() const { return pings_; }

  void closeWindow();

 private:
  void handle(const xcb_generic_event_t& event);
  void settle();  // until the server has done what it was told

  std::unique_ptr<Connection> connection_;
  xcb_window_t window_ = XCB_WINDOW_NONE;
  xcb_window_t focus_ = XCB_WINDOW_NONE;
  xcb_client_message_event_t ping_{};
  std::uint32_t answerMask_ = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
  int pings_ = 0;
  std::function<void()> onPing_ = [this] { answerPing(); };
  Subscription events_;
};

}  // namespace tavelle::x11::tests
