#include "tests/platform/x11/PasteboardTest.h"

namespace tavelle::x11::tests {
namespace {

// What a program is given that fetches the pasted text only after the clipboard was restored.
class PasteDebtTest : public PasteboardTest {
 protected:
  // The end of a run: the answer is written and pasted, and what was there before comes back.
  void pasteInto(xcb_window_t focus) {
    write("the answer");
    press(EditingKey::paste, focus);
  }
  void restore() {
    pasteboard->clearContents();
    pasteboard->setData("restored", "UTF8_STRING");
    pasteboard->setData("<b>restored</b>", "text/html");
  }

  static constexpr PasteDebt::Limits limits{};

  PeerRequestor application{actor};
  PeerRequestor other{actor};
};

TEST_F(PasteDebtTest, servesTheAnswerToTheApplicationThatIsLate) {
  pasteInto(application.window());
  restore();
  pass(400ms);
  EXPECT_EQ(other.data("UTF8_STRING"), "restored");
  EXPECT_EQ(application.targets().back(), "x-kde-passwordManagerHint");
  EXPECT_EQ(application.data("text/html"), std::nullopt);
  EXPECT_EQ(application.data("UTF8_STRING"), "the answer");
  EXPECT_EQ(text(), "restored");
}

TEST_F(PasteDebtTest, servesEveryRequestOfOnePaste) {
  pasteboard = makePasteboard({.claim = 1min, .graceAfterServing = 1min});
  pasteInto(application.window());
  EXPECT_EQ(application.data("UTF8_STRING"), "the answer");
  restore();
  EXPECT_EQ(application.data("UTF8_STRING"), "the answer");
  EXPECT_EQ(application.data("TEXT"), "the answer");
}

TEST_F(PasteDebtTest, isOverSoonAfterThePasteWasServed) {
  pasteInto(application.window());
  EXPECT_EQ(application.data("UTF8_STRING"), "the answer");
  restore();
  pass(limits.graceAfterServing);
  EXPECT_EQ(application.data("UTF8_STRING"), "restored");
}

TEST_F(PasteDebtTest, isNotOverBecauseTheTargetsWereListed) {
  pasteInto(application.window());
  EXPECT_FALSE(application.targets().empty());
  restore();
  pass(limits.graceAfterServing * 2);
  EXPECT_EQ(application.data("UTF8_STRING"), "the answer");
}

TEST_F(PasteDebtTest, isOverWhereNobodyComes) {
  pasteInto(application.window());
  restore();
  pass(limits.claim);
  EXPECT_EQ(application.data("UTF8_STRING"), "restored");
}

TEST_F(PasteDebtTest, knowsTheApplicationByAnyOfItsWindows) {
  const auto focus = xcb_generate_id(application.connection());
  pasteInto(focus);
  restore();
  EXPECT_EQ(application.data("UTF8_STRING"), "the answer");
}

TEST_F(PasteDebtTest, isOwedToWhoeverAsksFirstWhereTheFocusIsUnknown) {
  pasteInto(XCB_WINDOW_NONE);
  restore();
  EXPECT_EQ(application.data("UTF8_STRING"), "the answer");
  EXPECT_EQ(other.data("UTF8_STRING"), "restored");
}

TEST_F(PasteDebtTest, isNotOwedToTheClipboardManager) {
  auto& manager = other.connection();
  xcb_set_selection_owner(manager, manager.window(), manager.atom("CLIPBOARD_MANAGER"), manager.serverTime());
  pasteInto(XCB_WINDOW_NONE);
  restore();
  EXPECT_EQ(other.data("UTF8_STRING"), "restored");
  EXPECT_EQ(application.data("UTF8_STRING"), "the answer");
}

TEST_F(PasteDebtTest, endsWithTheOwnership) {
  pasteInto(application.window());
  PeerOwner next;
  next.offer("UTF8_STRING", "next");
  next.own();
  settle(*connection);
  EXPECT_EQ(application.data("UTF8_STRING"), "next");
  restore();
  EXPECT_EQ(application.data("UTF8_STRING"), "restored");
}

TEST_F(PasteDebtTest, isReplacedByTheNextPaste) {
  pasteInto(application.window());
  restore();
  pasteInto(other.window());
  restore();
  EXPECT_EQ(application.data("UTF8_STRING"), "restored");
  EXPECT_EQ(other.data("UTF8_STRING"), "the answer");
}

TEST_F(PasteDebtTest, owesNothingWhereNothingWasWritten) {
  pasteboard->clearContents();
  press(EditingKey::paste, application.window());
  restore();
  EXPECT_EQ(application.data("UTF8_STRING"), "restored");
}

}  // namespace
}  // namespace tavelle::x11::tests
