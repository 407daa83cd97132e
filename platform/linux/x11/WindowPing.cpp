#include "platform/linux/x11/WindowPing.h"

#include "platform/linux/x11/PropertyValues.h"

#include <algorithm>
#include <utility>

namespace tavelle::x11 {
namespace {

// Deeper than any window tree that was ever seen; a bound only because windows may be moved while they are walked.
constexpr int deepestWindow = 64;

constexpr std::uint32_t mostProtocols = 64;

// Answers go to the root window, meant for the window manager: to whoever selected its children's events, as EWMH
// has it, or its own, as Qt 5 does.
constexpr std::uint32_t answerEvents = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_STRUCTURE_NOTIFY;

}  // namespace

WindowPing::WindowPing(Connection& connection, std::function<void()> answered)
    : connection_(connection),
      protocols_(connection.atom("WM_PROTOCOLS")),
      ping_(connection.atom("_NET_WM_PING")),
      state_(connection.atom("WM_STATE")),
      answered_(std::move(answered)),
      events_(connection.events().subscribe([this](const xcb_generic_event_t& event) { handle(event); })) {}

bool WindowPing::send(xcb_window_t window) {
  cancel();
  const auto pinged = pingableWindow(window);
  if (pinged == XCB_WINDOW_NONE) return false;
  auto answers = connection_.select(connection_.root(), answerEvents);
  auto windowEvents = connection_.select(pinged, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
  const auto time = connection_.serverTime();  // tells this ping from the window manager's own
  awaited_.emplace(Awaited{pinged, time, std::move(answers), std::move(windowEvents)});
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = pinged;
  message.type = protocols_;
  message.data.data32[0] = ping_;
  message.data.data32[1] = time;
  message.data.data32[2] = pinged;
  connection_.sendEvent(pinged, XCB_EVENT_MASK_NO_EVENT, message);
  connection_.flush();
  return true;
}

void WindowPing::cancel() {
  awaited_.reset();
}

void WindowPing::handle(const xcb_generic_event_t& event) {
  if (!awaited_) return;
  const auto type = Connection::typeOf(event);
  const bool isOver =
      (type == XCB_CLIENT_MESSAGE && isAnswer(Connection::as<xcb_client_message_event_t>(event))) ||
      (type == XCB_DESTROY_NOTIFY && Connection::as<xcb_destroy_notify_event_t>(event).window == awaited_->window);
  if (!isOver) return;
  cancel();
  answered_();
}

bool WindowPing::isAnswer(const xcb_client_message_event_t& message) const {
  const auto& data = message.data.data32;
  return message.type == protocols_ && message.window == connection_.root() && data[0] == ping_ &&
         data[1] == awaited_->time && data[2] == awaited_->window;
}

// The focus may be on a window inside the application's own, which is the one that the window manager talks to.
xcb_window_t WindowPing::pingableWindow(xcb_window_t window) const {
  xcb_connection_t* const xcb = connection_;
  for (int depth = 0; depth < deepestWindow && window > XCB_INPUT_FOCUS_POINTER_ROOT; ++depth) {
    if (window == connection_.root()) break;
    const auto protocolsCookie = xcb_get_property(xcb, 0, window, protocols_, XCB_ATOM_ATOM, 0, mostProtocols);
    const auto stateCookie = xcb_get_property(xcb, 0, window, state_, XCB_GET_PROPERTY_TYPE_ANY, 0, 0);
    const auto treeCookie = xcb_query_tree(xcb, window);
    const XcbReply<xcb_get_property_reply_t> protocols{xcb_get_property_reply(xcb, protocolsCookie, nullptr)};
    const XcbReply<xcb_get_property_reply_t> state{xcb_get_property_reply(xcb, stateCookie, nullptr)};
    const XcbReply<xcb_query_tree_reply_t> tree{xcb_query_tree_reply(xcb, treeCookie, nullptr)};
    if (protocols && std::ranges::count(itemsIn(protocols->format, bytesOf(*protocols)), ping_) > 0) return window;
    if (!tree || (state && state->type != XCB_ATOM_NONE)) break;  // gone, or the application's own window
    window = tree->parent;
  }
  return XCB_WINDOW_NONE;
}

}  // namespace tavelle::x11
