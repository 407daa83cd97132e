#include "tests/platform/x11/EventLoop.h"

#include "platform/linux/GSourcePtr.h"
#include "platform/linux/x11/XcbReply.h"

namespace tavelle::x11::tests {
namespace {

constexpr gint64 waitLimit = 20 * G_USEC_PER_SEC;

// What no event of this process tells of is looked at again this often.
constexpr gint64 lookInterval = 5'000;

}  // namespace

bool waitUntil(const std::function<bool()>& isTrue) {
  const gint64 limit = g_get_monotonic_time() + waitLimit;
  GSource* look = nullptr;
  const auto lookAgain =
      makeSource("look again", [&look] { g_source_set_ready_time(look, g_get_monotonic_time() + lookInterval); });
  look = lookAgain.get();
  g_source_set_ready_time(look, 0);
  while (!isTrue() && g_get_monotonic_time() < limit) g_main_context_iteration(nullptr, true);
  return isTrue();
}

void passTime(Connection& connection, xcb_timestamp_t milliseconds) {
  const auto before = connection.serverTime();
  while (!connection.isLost() && connection.serverTime() - before < milliseconds) {
  }
}

void roundTrip(Connection& connection) {
  const XcbReply<xcb_get_input_focus_reply_t> reply{
      xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr)};
}

void settle(Connection& connection) {
  roundTrip(connection);
  while (g_main_context_iteration(nullptr, false)) {
  }
}

}  // namespace tavelle::x11::tests
