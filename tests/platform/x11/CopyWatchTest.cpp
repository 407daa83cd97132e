#include "tests/platform/x11/PasteboardTest.h"
#include "tests/platform/x11/PeerApplication.h"

namespace tavelle::x11::tests {
namespace {

// The pasteboard after a copy key stroke, before an application that takes its time.
class CopyWatchTest : public PasteboardTest {
 protected:
  // The application's side of a copy: it takes the clipboard, being the program that has the focus.
  void takeClipboard(const std::string& selected) {
    copied.offer("UTF8_STRING", selected);
    copied.own();
  }

  void takeAndGiveUpClipboard() {
    takeClipboard("selected");
    copied.giveUp();
  }

  void takeClipboardAfter(std::chrono::milliseconds time, const std::string& selected) {
    actor.postAfter(time, [this, selected] {
      takeClipboard(selected);
      // Heard of in this job: where nothing could run for a while, the end of the waiting may be due right after it.
      settle(*connection);
    });
  }

  void copyFrom(PeerApplication& application) {
    pasteboard->clearContents();
    pressed = now();
    press(EditingKey::copy, application.focus());
  }

  std::uint32_t rootEvents() {
    const auto cookie = xcb_get_window_attributes(*connection, connection->root());
    const XcbReply<xcb_get_window_attributes_reply_t> reply{
        xcb_get_window_attributes_reply(*connection, cookie, nullptr)};
    return reply ? reply->your_event_mask : ~0u;
  }

  PeerOwner copied;
  std::vector<xcb_window_t> repeated;
  std::chrono::steady_clock::time_point pressed;
};

TEST_F(CopyWatchTest, readsAtOnceWhatIsThere) {
  PeerApplication application;
  copyFrom(application);
  takeClipboard("selected");
  settle(*connection);
  EXPECT_EQ(text(), "selected");
  EXPECT_LT(since(pressed), CopyWatch::leastWait);
}

TEST_F(CopyWatchTest, copiesAgainWhereTheClipboardWasTakenAndGivenUpAtOnce) {
  PeerApplication application;
  onRepeat = [&](const PostedEditingKey& posted) {
    repeated.push_back(posted.focus);
    press(posted.key, posted.focus);
    takeClipboard("selected");
  };
  copyFrom(application);
  takeAndGiveUpClipboard();
  EXPECT_EQ(text(), "selected");
  EXPECT_EQ(repeated, std::vector{application.focus()});
}

TEST_F(CopyWatchTest, copiesThreeTimesAtMost) {
  PeerApplication application;
  onRepeat = [&](const PostedEditingKey& posted) {
    repeated.push_back(posted.focus);
    press(posted.key, posted.focus);
    takeAndGiveUpClipboard();
  };
  copyFrom(application);
  takeAndGiveUpClipboard();
  EXPECT_EQ(text(), std::nullopt);
  EXPECT_EQ(repeated.size(), 2u);
}

TEST_F(CopyWatchTest, doesNotCopyAgainWhereAnotherWindowHasTheKeyboardByNow) {
  PeerApplication application;
  onRepeat = [&](const PostedEditingKey& posted) { repeated.push_back(posted.focus); };  // nothing is sent then
  copyFrom(application);
  takeAndGiveUpClipboard();
  EXPECT_EQ(text(), std::nullopt);
  EXPECT_EQ(repeated.size(), 1u);
}

TEST_F(CopyWatchTest, doesNotCopyAgainWhereSomethingElseThanTextWasCopied) {
  PeerApplication application;
  onRepeat = [&](const PostedEditingKey& posted) { repeated.push_back(posted.focus); };
  copyFrom(application);
  copied.offer("image/png", "a picture");
  copied.own();
  settle(*connection);
  EXPECT_EQ(text(), std::nullopt);
  EXPECT_TRUE(repeated.empty());
}

TEST_F(CopyWatchTest, waitsForAnApplicationThatIsStillAtWork) {
  PeerApplication application;
  application.onPing([&] {
    actor.postAfter(1'100ms, [&] {
      takeClipboard("a megabyte");
      application.answerPing();
    });
  });
  copyFrom(application);
  EXPECT_EQ(text(), "a megabyte");
}

TEST_F(CopyWatchTest, saysThatNothingWasSelectedOnceTheApplicationHasAnswered) {
  PeerApplication application;
  copyFrom(application);
  EXPECT_EQ(text(), std::nullopt);
  EXPECT_GE(since(pressed), CopyWatch::leastWait);
  EXPECT_LT(since(pressed), CopyWatch::waitWithoutPing);
  EXPECT_EQ(application.pings(), 2);
}

TEST_F(CopyWatchTest, waitsForAKeyThatStillStoodInTheApplicationsQueueWhenItAnswered) {
  PeerApplication application;
  application.onPing([&] {
    if (application.pings() == 1) return application.answerPing();
    actor.postAfter(600ms, [&] {
      takeClipboard("queued");
      application.answerPing();
    });
  });
  copyFrom(application);
  EXPECT_EQ(text(), "queued");
}

TEST_F(CopyWatchTest, hearsAnswersThatAreSentToTheRootAlone) {
  PeerApplication application;
  application.sendAnswersTo(XCB_EVENT_MASK_STRUCTURE_NOTIFY);
  copyFrom(application);
  EXPECT_EQ(text(), std::nullopt);
  EXPECT_LT(since(pressed), CopyWatch::waitWithoutPing);
}

TEST_F(CopyWatchTest, saysItAtOnceWhenTheAnswerWasLate) {
  PeerApplication application;
  application.onPing([&] { actor.postAfter(700ms, [&] { application.answerPing(); }); });
  copyFrom(application);
  EXPECT_EQ(text(), std::nullopt);
  EXPECT_GE(since(pressed), 700ms);
  EXPECT_LT(since(pressed), CopyWatch::waitForAnswer / 2);
}

TEST_F(CopyWatchTest, waitsForAnApplicationThatCopiesFromATimer) {
  PeerApplication application;
  copyFrom(application);
  takeClipboardAfter(202ms, "region");
  EXPECT_EQ(text(), "region");
}

TEST_F(CopyWatchTest, waitsALittleForAnApplicationThatAnswersNoPings) {
  PeerApplication application{PeerApplication::Protocols::none};
  copyFrom(application);
  takeClipboardAfter(600ms, "slow");
  EXPECT_EQ(text(), "slow");
  EXPECT_EQ(application.pings(), 0);

  copyFrom(application);
  EXPECT_EQ(text(), std::nullopt);
  EXPECT_GE(since(pressed), CopyWatch::waitWithoutPing);
  EXPECT_LT(since(pressed), CopyWatch::waitForAnswer / 2);
}

TEST_F(CopyWatchTest, waitsALittleWhereTheFocusIsUnknown) {
  pasteboard->clearContents();
  press(EditingKey::copy, XCB_WINDOW_NONE);
  takeClipboardAfter(400ms, "selected");
  EXPECT_EQ(text(), "selected");
}

TEST_F(CopyWatchTest, givesUpOnAnApplicationThatHangs) {
  PeerApplication application;
  application.onPing([] {});
  copyFrom(application);
  EXPECT_EQ(text(), std::nullopt);
  EXPECT_GE(since(pressed), CopyWatch::waitForAnswer);
  EXPECT_EQ(rootEvents(), XCB_EVENT_MASK_NO_EVENT);
}

TEST_F(CopyWatchTest, waitsNoLongerForAWindowThatIsGone) {
  PeerApplication application;
  application.onPing([&] { actor.postAfter(400ms, [&] { application.closeWindow(); }); });
  copyFrom(application);
  EXPECT_EQ(text(), std::nullopt);
  EXPECT_LT(since(pressed), CopyWatch::waitForAnswer / 2);
}

TEST_F(CopyWatchTest, answersAtOnceWhereNoCopyKeyWasSent) {
  pasteboard->clearContents();
  const auto begin = now();
  EXPECT_EQ(text(), std::nullopt);
  EXPECT_LT(since(begin), CopyWatch::leastWait);
}

TEST_F(CopyWatchTest, answersAtOnceOnceItHasGivenUp) {
  PeerApplication application;
  copyFrom(application);
  EXPECT_EQ(text(), std::nullopt);
  const auto begin = now();
  EXPECT_EQ(text(), std::nullopt);
  EXPECT_LT(since(begin), CopyWatch::leastWait);
}

TEST_F(CopyWatchTest, waitsNoLongerOnceSomethingIsWritten) {
  PeerApplication application;
  application.onPing([] {});
  copyFrom(application);
  ASSERT_TRUE(waitUntil([&] { return application.pings() == 1; }));
  pasteboard->setData("restored", "UTF8_STRING");
  EXPECT_EQ(text(), "restored");
  EXPECT_LT(since(pressed), CopyWatch::waitForAnswer / 2);
}

TEST_F(CopyWatchTest, takesNoOtherPingsAnswerForItsOwn) {
  PeerApplication application;
  bool isForged = false;
  application.onPing([&] {
    // The answer to a ping of the window manager's comes first.
    application.answerPing(-1);
    isForged = true;
    actor.postAfter(800ms, [&] { takeClipboard("selected"); });
  });
  copyFrom(application);
  EXPECT_EQ(text(), "selected");
  EXPECT_TRUE(isForged);
}

TEST_F(CopyWatchTest, asksNobodyOnceSomethingIsWrittenInTheSameTurn) {
  PeerApplication application;
  copyFrom(application);
  ASSERT_TRUE(pasteboard->setString("written", pasteboardTypeString));
  bool isNextTurnOver = false;
  actor.postAfter(1ms, [&] { isNextTurnOver = true; });
  ASSERT_TRUE(waitUntil([&] { return isNextTurnOver; }));
  settle(application.connection());
  EXPECT_EQ(application.pings(), 0);
  EXPECT_EQ(rootEvents(), XCB_EVENT_MASK_NO_EVENT);
}

TEST_F(CopyWatchTest, asksTheWindowOfTheLastCopyAlone) {
  PeerApplication before;
  PeerApplication application;
  copyFrom(before);
  copyFrom(application);
  EXPECT_EQ(text(), std::nullopt);
  EXPECT_EQ(before.pings(), 0);
  EXPECT_EQ(application.pings(), 2);
}

TEST_F(CopyWatchTest, listensToTheRootOnlyWhileItWaits) {
  PeerApplication application;
  application.onPing([] {});
  copyFrom(application);
  ASSERT_TRUE(waitUntil([&] { return application.pings() == 1; }));
  EXPECT_NE(rootEvents(), XCB_EVENT_MASK_NO_EVENT);
  takeClipboard("selected");
  settle(*connection);
  EXPECT_EQ(rootEvents(), XCB_EVENT_MASK_NO_EVENT);
}

}  // namespace
}  // namespace tavelle::x11::tests
