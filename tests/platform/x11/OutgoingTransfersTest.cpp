#include "tests/platform/x11/PasteboardTest.h"

#include <algorithm>
#include <array>

namespace tavelle::x11::tests {
namespace {

using OutgoingTransfersTest = PasteboardTest;

TEST_F(OutgoingTransfersTest, servesAHundredMegabytesToSeveralAtOnce) {
  const auto bytes = bytesOfSize(100'000'000);
  pasteboard->clearContents();
  pasteboard->setData(bytes, "image/tiff");
  PeerRequestor first{actor};
  PeerRequestor second{actor};
  auto toFirst = first.begin("image/tiff");
  auto toSecond = second.begin("image/tiff");
  const auto one = toFirst.result();
  const auto two = toSecond.result();
  ASSERT_TRUE(one && two);
  EXPECT_TRUE(one->isIncremental);
  EXPECT_TRUE(one->data == bytes);
  EXPECT_TRUE(two->data == bytes);
}

TEST_F(OutgoingTransfersTest, goesOnWithATransferWhenTheContentsChange) {
  const auto bytes = bytesOfSize(20'000'000);
  pasteboard->clearContents();
  pasteboard->setData(bytes, "image/tiff");
  PeerRequestor requestor{actor};
  bool isAsked = false;
  const auto events = connection->events().subscribe([&](const xcb_generic_event_t& event) {
    isAsked = isAsked || Connection::typeOf(event) == XCB_SELECTION_REQUEST;
  });
  auto transfer = requestor.begin("image/tiff");
  ASSERT_TRUE(waitUntil([&] { return isAsked; }));
  write("something else");
  const auto answer = transfer.result();
  ASSERT_TRUE(answer);
  EXPECT_TRUE(answer->data == bytes);
}

TEST_F(OutgoingTransfersTest, outlivesRequestorsThatDieHalfWay) {
  pasteboard->clearContents();
  pasteboard->setData(bytesOfSize(20'000'000), "image/tiff");
  for (int i = 0; i < 3; ++i) {
    PeerRequestor requestor{actor};
    auto& peer = requestor.connection();
    bool hasBegun = false;
    const auto events = peer.events().subscribe([&](const xcb_generic_event_t& event) {
      hasBegun = hasBegun || Connection::typeOf(event) == XCB_SELECTION_NOTIFY;
    });
    xcb_convert_selection(peer, peer.window(), peer.atom("CLIPBOARD"), peer.atom("image/tiff"), peer.atom("P"),
                          XCB_CURRENT_TIME);
    ASSERT_TRUE(waitUntil([&] { return hasBegun; }));
  }
  settle(*connection);
  PeerRequestor survivor{actor};
  EXPECT_EQ(survivor.data("image/tiff").value_or("").size(), 20'000'000u);
}

TEST_F(OutgoingTransfersTest, forgetsARequestorThatTakesNothing) {
  pasteboard->clearContents();
  pasteboard->setData(bytesOfSize(20'000'000), "image/tiff");
  PeerRequestor requestor{actor};
  auto& peer = requestor.connection();
  const auto property = peer.atom("P");
  int values = 0;
  const auto events = peer.events().subscribe([&](const xcb_generic_event_t& event) {
    if (Connection::typeOf(event) != XCB_PROPERTY_NOTIFY) return;
    const auto& notify = Connection::as<xcb_property_notify_event_t>(event);
    if (notify.atom == property && notify.state == XCB_PROPERTY_NEW_VALUE) ++values;
  });
  xcb_convert_selection(peer, peer.window(), peer.atom("CLIPBOARD"), peer.atom("image/tiff"), property,
                        XCB_CURRENT_TIME);
  ASSERT_TRUE(waitUntil([&] { return values == 1; }));
  pass(OutgoingTransfers::stallLimit + 500ms);
  xcb_delete_property(peer, peer.window(), property);
  settle(peer);
  settle(*connection);
  settle(peer);
  EXPECT_EQ(values, 1);
}

}  // namespace
}  // namespace tavelle::x11::tests
