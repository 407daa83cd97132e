#include "tests/platform/x11/PeerApplication.h"

#include "platform/FatalError.h"

#include <array>

namespace tavelle::x11::tests {

PeerApplication::PeerApplication(Protocols protocols) : connection_(Connection::open()) {
  if (!connection_) fatalError("no X server for the test");
  auto& c = *connection_;
  window_ = xcb_generate_id(c);
  focus_ = xcb_generate_id(c);
  xcb_create_window(c, 0, window_, c.root(), 0, 0, 100, 100, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0,
                    nullptr);
  xcb_create_window(c, 0, focus_, window_, 0, 0, 100, 100, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0,
                    nullptr);
  const std::array ping{c.atom("WM_DELETE_WINDOW"), c.atom("_NET_WM_PING")};
  const std::uint32_t count = protocols == Protocols::ping ? 2 : 1;
  xcb_change_property(c, XCB_PROP_MODE_REPLACE, window_, c.atom("WM_PROTOCOLS"), XCB_ATOM_ATOM, 32, count, ping.data());
  settle();
  events_ = c.events().subscribe([this](const xcb_generic_event_t& event) { handle(event); });
}

void PeerApplication::handle(const xcb_generic_event_t& event) {
  if (Connection::typeOf(event) != XCB_CLIENT_MESSAGE) return;
  const auto& message = Connection::as<xcb_client_message_event_t>(event);
  if (message.data.data32[0] != connection_->atom("_NET_WM_PING")) return;
  ping_ = message;
  ++pings_;
  onPing_();
}

void PeerApplication::answerPing(int timeOffset) {
  auto answer = ping_;
  answer.data.data32[1] += static_cast<std::uint32_t>(timeOffset);
  answer.window = connection_->root();
  connection_->sendEvent(connection_->root(), answerMask_, answer);
  settle();
}

void PeerApplication::closeWindow() {
  xcb_destroy_window(*connection_, window_);
  settle();
}

void PeerApplication::settle() {
  const XcbReply<xcb_get_input_focus_reply_t> done{
      xcb_get_input_focus_reply(*connection_, xcb_get_input_focus(*connection_), nullptr)};
}

}  // namespace tavelle::x11::tests
