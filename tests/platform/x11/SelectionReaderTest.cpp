#include "tests/platform/x11/PasteboardTest.h"

namespace tavelle::x11::tests {
namespace {

// Owners that behave badly. The limits are the reader's own, with room for a loaded machine.
class SelectionReaderTest : public PasteboardTest {
 protected:
  // Well below what one more silent type would cost.
  static constexpr auto oneSilence = SelectionReader::silenceLimit + SelectionReader::silenceLimit / 2;
  static constexpr auto twoSilences = oneSilence + SelectionReader::silenceLimit;

  // One piece of a transfer that the test paces itself.
  void piece(const PeerOwner::Request& request, const Data& bytes) {
    xcb_change_property(owner.connection(), XCB_PROP_MODE_REPLACE, request.requestor, request.property, request.target,
                        8, static_cast<std::uint32_t>(bytes.size()), bytes.data());
    owner.connection().flush();
  }

  PeerOwner owner;
};

TEST_F(SelectionReaderTest, givesUpOnAnOwnerThatNeverAnswers) {
  owner.ignore("TARGETS");
  owner.own();
  const auto begin = now();
  EXPECT_EQ(types(), std::nullopt);
  EXPECT_GE(since(begin), SelectionReader::silenceLimit);
  EXPECT_LT(since(begin), oneSilence);
}

TEST_F(SelectionReaderTest, paysTwoTimeLimitsForTwentyTypesOfAnOwnerThatFellSilent) {
  for (int i = 0; i < 20; ++i) {
    owner.offer("type " + std::to_string(i), "");
    owner.ignore("type " + std::to_string(i));
  }
  owner.own();
  const auto names = types();
  ASSERT_TRUE(names);
  const auto begin = now();
  for (const auto& name : *names) EXPECT_EQ(data(name), std::nullopt);
  EXPECT_LT(since(begin), twoSilences);
  EXPECT_EQ(owner.requests().size(), 3u);
}

TEST_F(SelectionReaderTest, losesOnlyTheTypeThatItsOwnerNeverAnswers) {
  for (const auto* name : {"text/html", "image/png", "UTF8_STRING"}) owner.offer(name, name);
  owner.ignore("image/png");
  owner.own();
  EXPECT_EQ(types(), (Types{"text/html", "image/png", "UTF8_STRING"}));
  EXPECT_EQ(data("text/html"), "text/html");
  EXPECT_EQ(data("image/png"), std::nullopt);
  EXPECT_EQ(data("UTF8_STRING"), "UTF8_STRING");
}

TEST_F(SelectionReaderTest, asksASilentOwnerAgainInTheNextSeries) {
  owner.offer("text/html", "<b>");
  owner.ignore("image/png");
  owner.own();
  EXPECT_EQ(data("image/png"), std::nullopt);
  EXPECT_EQ(data("text/html"), std::nullopt);
  EXPECT_EQ(types(), (Types{"text/html"}));
  EXPECT_EQ(data("text/html"), "<b>");
}

TEST_F(SelectionReaderTest, asksTheNextOwnerAtOnce) {
  owner.ignore("UTF8_STRING");
  owner.own();
  EXPECT_EQ(data("UTF8_STRING"), std::nullopt);
  PeerOwner next;
  next.offer("UTF8_STRING", "next");
  next.own();
  settle(*connection);
  EXPECT_EQ(data("UTF8_STRING"), "next");
}

TEST_F(SelectionReaderTest, hasNothingOfAnOwnerThatDiesBeforeItAnswers) {
  owner.answer("UTF8_STRING", [&](const auto&) { actor.post([&] { owner.die(); }); });
  owner.own();
  const auto begin = now();
  EXPECT_EQ(data("UTF8_STRING"), std::nullopt);
  EXPECT_LT(since(begin), SelectionReader::silenceLimit);
}

TEST_F(SelectionReaderTest, hasNothingOfAnOwnerThatDiesHalfWay) {
  owner.offerInPieces("image/png", Data(100'000, 'x'), 10'000, 5);
  owner.own();
  Running reading{actor, pasteboard->dataForType("image/png")};
  ASSERT_TRUE(waitUntil([&] { return owner.piecesSent() == 5; }));
  const auto begin = now();
  owner.die();
  EXPECT_EQ(reading.result(), std::nullopt);
  EXPECT_LT(since(begin), SelectionReader::silenceLimit);
  EXPECT_EQ(types(), std::nullopt);
}

TEST_F(SelectionReaderTest, givesUpOnPiecesThatStopComing) {
  owner.offerInPieces("image/png", Data(100'000, 'x'), 10'000, 5);
  owner.own();
  const auto begin = now();
  EXPECT_EQ(data("image/png"), std::nullopt);
  EXPECT_LT(since(begin), oneSilence);
  EXPECT_EQ(owner.piecesSent(), 5u);
}

TEST_F(SelectionReaderTest, waitsForAnOwnerThatIsSlowButGetsOn) {
  // Longer in all than an owner may be silent.
  constexpr auto pace = SelectionReader::silenceLimit / 2;
  owner.offer("text/html", "");
  owner.answer("text/html", [&](const auto& request) {
    actor.postAfter(pace, [this, request] { owner.reply(request, Data(4, '\0'), "INCR", 32); });
    actor.postAfter(pace * 2, [this, request] { piece(request, "first "); });
    actor.postAfter(pace * 3, [this, request] { piece(request, "second"); });
    actor.postAfter(pace * 4, [this, request] { piece(request, ""); });
  });
  owner.own();
  EXPECT_EQ(data("text/html"), "first second");
}

TEST_F(SelectionReaderTest, neverTakesALateAnswerForANewOne) {
  std::optional<PeerOwner::Request> unanswered;
  owner.answer("UTF8_STRING", [&](const auto& request) {
    if (unanswered) {
      owner.reply(*unanswered, "late", "UTF8_STRING");
      actor.postAfter(200ms, [this, request] { owner.reply(request, "in time", "UTF8_STRING"); });
    }
    unanswered = request;
  });
  owner.own();
  EXPECT_EQ(data("UTF8_STRING"), std::nullopt);
  EXPECT_EQ(text(), "in time");
}

TEST_F(SelectionReaderTest, neverTakesALateRefusalForANewOne) {
  std::optional<PeerOwner::Request> unanswered;
  owner.answer("UTF8_STRING", [&](const auto& request) {
    if (unanswered) {
      owner.refuse(*unanswered);
      actor.postAfter(200ms, [this, request] { owner.reply(request, "in time", "UTF8_STRING"); });
    }
    unanswered = request;
  });
  owner.own();
  EXPECT_EQ(data("UTF8_STRING"), std::nullopt);
  EXPECT_EQ(text(), "in time");
}

TEST_F(SelectionReaderTest, letsALateTransferComeToItsEnd) {
  std::optional<PeerOwner::Request> unanswered;
  owner.answer("image/png", [&](const auto& request) { unanswered = request; });
  owner.own();
  EXPECT_EQ(data("image/png"), std::nullopt);
  owner.offerInPieces("image/png", Data(100'000, 'x'), 10'000);
  xcb_convert_selection(*connection, connection->window(), connection->atom("CLIPBOARD"), connection->atom("image/png"),
                        unanswered->property, XCB_CURRENT_TIME);
  EXPECT_TRUE(waitUntil([&] { return owner.piecesSent() == 11; }));
}

TEST_F(SelectionReaderTest, readsAgainOnceALateAnswerHasCome) {
  owner.answer("image/png", [&](const auto& request) {
    actor.postAfter(SelectionReader::silenceLimit + 500ms, [this, request] { owner.refuse(request); });
  });
  owner.offer("text/html", "<b>");
  owner.own();
  EXPECT_EQ(data("image/png"), std::nullopt);
  EXPECT_TRUE(waitUntil([&] { return data("text/html").has_value(); }));
}

TEST_F(SelectionReaderTest, hasNothingOfATransferThatWasCutShortByANewOwner) {
  owner.offerInPieces("UTF8_STRING", Data(100'000, 'x'), 10'000, 5, 100'000);
  owner.own();
  Running reading{actor, pasteboard->dataForType("UTF8_STRING")};
  ASSERT_TRUE(waitUntil([&] { return owner.piecesSent() == 5; }));
  PeerOwner next;
  next.offer("UTF8_STRING", "next");
  next.own();
  settle(*connection);
  owner.cutTransfersShort();
  EXPECT_EQ(reading.result(), std::nullopt);
  EXPECT_EQ(data("UTF8_STRING"), "next");
}

TEST_F(SelectionReaderTest, readsATransferToItsEndThoughTheOwnerChanged) {
  const Data bytes(100'000, 'x');
  owner.offerInPieces("UTF8_STRING", bytes, 1'000, std::numeric_limits<std::size_t>::max(), 100'000);
  owner.own();
  Running reading{actor, pasteboard->dataForType("UTF8_STRING")};
  ASSERT_TRUE(waitUntil([&] { return owner.piecesSent() >= 5; }));
  PeerOwner next;
  next.own();
  EXPECT_EQ(reading.result(), bytes);
}

TEST_F(SelectionReaderTest, hasNothingOfAnAnswerWithoutAProperty) {
  owner.answer("UTF8_STRING", [&](const auto& request) { owner.notify(request, request.property); });
  owner.own();
  EXPECT_EQ(data("UTF8_STRING"), std::nullopt);
}

TEST_F(SelectionReaderTest, understandsARefusalWithoutATime) {
  owner.answer("UTF8_STRING", [&](auto request) {
    request.time = XCB_CURRENT_TIME;
    owner.refuse(request);
  });
  owner.own();
  const auto begin = now();
  EXPECT_EQ(data("UTF8_STRING"), std::nullopt);
  EXPECT_LT(since(begin), SelectionReader::silenceLimit);
}

TEST_F(SelectionReaderTest, asksWithATimeOfTheServer) {
  xcb_timestamp_t asked = XCB_CURRENT_TIME;
  owner.answer("UTF8_STRING", [&](const auto& request) {
    asked = request.time;
    owner.reply(request, "text", "UTF8_STRING");
  });
  owner.own();
  const auto begin = owner.connection().serverTime();
  EXPECT_EQ(text(), "text");
  EXPECT_GE(asked, begin);
}

}  // namespace
}  // namespace tavelle::x11::tests
