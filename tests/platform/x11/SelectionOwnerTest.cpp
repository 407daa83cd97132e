#include "tests/platform/x11/PasteboardTest.h"

#include <algorithm>
#include <array>

namespace tavelle::x11::tests {
namespace {

using SelectionOwnerTest = PasteboardTest;

TEST_F(SelectionOwnerTest, answersMultipleWithWhatItHas) {
  write("text");
  PeerRequestor requestor{actor};
  auto& peer = requestor.connection();
  const auto property = [&](const char* name) { return peer.atom(name); };
  const std::array<xcb_atom_t, 8> pairs = {property("UTF8_STRING"), property("A"),        property("image/png"),
                                           property("B"),           property("MULTIPLE"), property("C"),
                                           property("TARGETS"),     property("D")};
  xcb_change_property(peer, XCB_PROP_MODE_REPLACE, peer.window(), property("PAIRS"), property("ATOM_PAIR"), 32, 8,
                      pairs.data());
  bool isAnswered = false;
  const auto events = peer.events().subscribe([&](const xcb_generic_event_t& event) {
    if (Connection::typeOf(event) != XCB_SELECTION_NOTIFY) return;
    isAnswered = Connection::as<xcb_selection_notify_event_t>(event).property == property("PAIRS");
  });
  xcb_convert_selection(peer, peer.window(), property("CLIPBOARD"), property("MULTIPLE"), property("PAIRS"),
                        XCB_CURRENT_TIME);
  ASSERT_TRUE(waitUntil([&] { return isAnswered; }));

  const auto read = [&](const char* name) {
    const auto cookie = xcb_get_property(peer, 0, peer.window(), property(name), XCB_GET_PROPERTY_TYPE_ANY, 0, 1000);
    const XcbReply<xcb_get_property_reply_t> reply{xcb_get_property_reply(peer, cookie, nullptr)};
    return Data{static_cast<const char*>(xcb_get_property_value(reply.get())),
                static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
  };
  EXPECT_EQ(read("A"), "text");
  EXPECT_FALSE(read("D").empty());
  std::array<xcb_atom_t, 8> answered{};
  const auto bytes = read("PAIRS");
  ASSERT_EQ(bytes.size(), sizeof answered);
  std::copy(bytes.begin(), bytes.end(), reinterpret_cast<char*>(answered.data()));
  EXPECT_EQ(answered[1], property("A"));
  EXPECT_EQ(answered[3], static_cast<xcb_atom_t>(XCB_ATOM_NONE));
  EXPECT_EQ(answered[5], static_cast<xcb_atom_t>(XCB_ATOM_NONE));
  EXPECT_EQ(answered[7], property("D"));
}

TEST_F(SelectionOwnerTest, refusesRequestsFromBeforeItsOwnership) {
  PeerRequestor requestor{actor};
  const auto before = requestor.connection().serverTime();
  while (requestor.connection().serverTime() == before) continue;
  write("mine");
  bool isRefused = false;
  auto& peer = requestor.connection();
  const auto events = peer.events().subscribe([&](const xcb_generic_event_t& event) {
    if (Connection::typeOf(event) != XCB_SELECTION_NOTIFY) return;
    isRefused = Connection::as<xcb_selection_notify_event_t>(event).property == XCB_ATOM_NONE;
  });
  xcb_convert_selection(peer, peer.window(), peer.atom("CLIPBOARD"), peer.atom("UTF8_STRING"), peer.atom("P"), before);
  EXPECT_TRUE(waitUntil([&] { return isRefused; }));
}

}  // namespace
}  // namespace tavelle::x11::tests
