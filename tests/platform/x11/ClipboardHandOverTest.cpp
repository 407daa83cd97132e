#include "tests/platform/x11/PasteboardTest.h"

#include <map>

namespace tavelle::x11::tests {
namespace {

// A clipboard manager: on request it fetches what it is told to, and takes the clipboard.
class Manager {
 public:
  explicit Manager(MainActor& actor) : requestor_(actor, manager_.connection()) {
    manager_.answer("SAVE_TARGETS", [this](const auto& request) { save(request); });
    manager_.own();
  }

  bool takesClipboard = true;
  bool answers = true;
  bool refuses = false;
  bool hangs = false;
  PeerRequestor& requestor() { return requestor_; }
  const std::map<std::string, Data>& saved() const { return saved_; }

 private:
  void save(const PeerOwner::Request& request) {
    if (refuses) return manager_.refuse(request);
    if (hangs) return;
    auto& c = manager_.connection();
    const auto cookie = xcb_get_property(c, 0, request.requestor, request.property, XCB_ATOM_ATOM, 0, 1000);
    const XcbReply<xcb_get_property_reply_t> reply{xcb_get_property_reply(c, cookie, nullptr)};
    const auto* const atoms = static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.get()));
    for (std::uint32_t i = 0; i < reply->value_len; ++i) names_.push_back(c.atomName(atoms[i]));
    request_ = request;
    fetchNext();
  }

  void fetchNext() {
    if (saved_.size() == names_.size()) return finish();
    const auto name = names_[saved_.size()];
    requestor_.fetch(name, [this, name](Data data) {
      saved_[name] = data;
      clipboard_.offer(name, std::move(data));
      fetchNext();
    });
  }

  void finish() {
    if (takesClipboard) clipboard_.own();
    if (answers) manager_.notify(request_, request_.property);
  }

  PeerOwner manager_{"CLIPBOARD_MANAGER"};
  PeerOwner clipboard_;
  PeerRequestor requestor_;
  PeerOwner::Request request_{};
  std::vector<std::string> names_;
  std::map<std::string, Data> saved_;
};

class ClipboardHandOverTest : public PasteboardTest {
 protected:
  // What the hand-over says; no value where it says nothing in time.
  std::optional<bool> handOver() {
    std::optional<bool> result;
    pasteboard->handOver([&](bool isSafe) { result = isSafe; });
    EXPECT_EQ(result, std::nullopt) << "told before begin() returned";
    waitUntil([&] { return result.has_value(); });
    return result;
  }

  void restore() {
    pasteboard->clearContents();
    pasteboard->setData("text", "UTF8_STRING");
    pasteboard->setData(image, "image/png");
  }

  const Data image = Data(6'000'000, 'i');
};

TEST_F(ClipboardHandOverTest, givesEverythingToTheManager) {
  Manager manager{actor};
  restore();
  EXPECT_EQ(handOver(), true);
  EXPECT_EQ(manager.saved(), (std::map<std::string, Data>{{"UTF8_STRING", "text"}, {"image/png", image}}));
  settle(*connection);
  EXPECT_FALSE(pasteboard->ownsContents());
  EXPECT_EQ(text(), "text");
}

TEST_F(ClipboardHandOverTest, isDoneWhenTheManagerTakesTheClipboardWithoutAWord) {
  Manager manager{actor};
  manager.answers = false;
  restore();
  EXPECT_EQ(handOver(), true);
}

TEST_F(ClipboardHandOverTest, isDoneWhenTheManagerHasSavedWithoutTakingTheClipboardYet) {
  Manager manager{actor};
  manager.takesClipboard = false;
  restore();
  EXPECT_EQ(handOver(), true);
}

TEST_F(ClipboardHandOverTest, saysThatAManagerRefused) {
  Manager manager{actor};
  manager.refuses = true;
  restore();
  EXPECT_EQ(handOver(), false);
  EXPECT_TRUE(pasteboard->ownsContents());
}

TEST_F(ClipboardHandOverTest, doesNotWaitLongForAManagerThatHangs) {
  Manager manager{actor};
  manager.hangs = true;
  restore();
  const auto begin = now();
  EXPECT_EQ(handOver(), false);
  EXPECT_LT(since(begin), ClipboardHandOver::limit * 2);
}

TEST_F(ClipboardHandOverTest, trustsASilentManagerThatHasFetchedEverything) {
  Manager manager{actor};
  manager.hangs = true;
  restore();
  EXPECT_EQ(manager.requestor().data("UTF8_STRING"), "text");
  EXPECT_EQ(handOver(), false) << "it has only the text";
  EXPECT_EQ(manager.requestor().data("image/png"), image);
  EXPECT_EQ(handOver(), true);
}

TEST_F(ClipboardHandOverTest, saysThatThereIsNoManager) {
  restore();
  const auto begin = now();
  EXPECT_EQ(handOver(), false);
  EXPECT_LT(since(begin), ClipboardHandOver::limit);
}

TEST_F(ClipboardHandOverTest, hasNothingToHandOverWhereTheClipboardIsEmptyOrAnothers) {
  Manager manager{actor};
  EXPECT_EQ(handOver(), true);
  pasteboard->clearContents();
  EXPECT_EQ(handOver(), true);
  EXPECT_TRUE(manager.saved().empty());
}

TEST_F(ClipboardHandOverTest, tellsWhenAnotherProgramTakesTheClipboard) {
  restore();
  bool isLost = false;
  const auto lost = pasteboard->lostOwnership().subscribe([&] { isLost = true; });
  const Program xclip({"xclip", "-quiet", "-selection", "clipboard", "-in"}, "next");
  EXPECT_TRUE(waitUntil([&] { return isLost; }));
  EXPECT_FALSE(pasteboard->ownsContents());
}

}  // namespace
}  // namespace tavelle::x11::tests
