#include "tests/platform/x11/PasteboardTest.h"

#include <map>
#include <utility>

namespace tavelle::x11::tests {
namespace {

const Data textWithNUL{"one\0two\0", 8};

TEST_F(PasteboardTest, hasNoTypesWithoutAnOwner) {
  EXPECT_EQ(types(), std::nullopt);
  EXPECT_EQ(text(), std::nullopt);
  EXPECT_EQ(data("UTF8_STRING"), std::nullopt);
}

TEST_F(PasteboardTest, returnsEveryTypeInTheOwnersOrderLessTheProtocolsOwn) {
  PeerOwner owner;
  const std::string longName(300, 'n');
  owner.listTargets({"TIMESTAMP", "TARGETS", "MULTIPLE", "SAVE_TARGETS", "text/html", "UTF8_STRING", "DELETE",
                     "INSERT_SELECTION", "INSERT_PROPERTY", longName, "image/png", "text/html"});
  owner.own();
  EXPECT_EQ(types(), (Types{"text/html", "UTF8_STRING", longName, "image/png"}));
}

TEST_F(PasteboardTest, hasNoTypesWhereTheOwnerRefusesToListThem) {
  PeerOwner owner;
  owner.answer("TARGETS", [&](const auto& request) { owner.refuse(request); });
  owner.own();
  EXPECT_EQ(types(), std::nullopt);
}

TEST_F(PasteboardTest, keepsTheHintOfAnotherProgram) {
  // A password manager's: the restored password must not get into a history either.
  PeerOwner owner;
  owner.offer("UTF8_STRING", "password");
  owner.offer("x-kde-passwordManagerHint", "secret");
  owner.own();
  EXPECT_EQ(types(), (Types{"UTF8_STRING", "x-kde-passwordManagerHint"}));
}

TEST_F(PasteboardTest, readsTheBytesExactly) {
  PeerOwner owner;
  const auto image = bytesOfSize(70'000);
  owner.offer("image/png", image);
  owner.offer("empty", "");
  owner.own();
  EXPECT_EQ(data("image/png"), image);
  EXPECT_EQ(data("empty"), "");
  EXPECT_EQ(data("not/there"), std::nullopt);
}

TEST_F(PasteboardTest, neverAsksForWhatIsBoundToItsOwner) {
  PeerOwner owner;
  owner.offer("GTK_TEXT_BUFFER_CONTENTS", "\x10\x20\x30\x40\x50\x60\x70\x80");
  owner.offer("PIXMAP", "1234", "PIXMAP", 32);
  owner.offer("UTF8_STRING", "text");
  owner.own();
  EXPECT_EQ(types(), (Types{"UTF8_STRING"}));
  EXPECT_EQ(data("GTK_TEXT_BUFFER_CONTENTS"), std::nullopt);
  EXPECT_EQ(data("DELETE"), std::nullopt);
  EXPECT_EQ(owner.requests(), (std::vector<std::string>{"TARGETS"}));
  pasteboard->clearContents();
  EXPECT_FALSE(pasteboard->setData("12345678", "GTK_TEXT_BUFFER_CONTENTS"));
}

TEST_F(PasteboardTest, readsPiecesOfAnySize) {
  PeerOwner owner;
  const auto bytes = bytesOfSize(1'000'003);
  owner.offerInPieces("small pieces", bytes, 1'000);
  owner.offerInPieces("large pieces", bytes, 900'000);
  owner.offerInPieces("nothing", "", 1'000);
  owner.own();
  EXPECT_TRUE(data("small pieces") == bytes);
  EXPECT_TRUE(data("large pieces") == bytes);
  EXPECT_EQ(data("nothing"), "");
}

TEST_F(PasteboardTest, readsAPropertyOfAHundredMegabytesInPieces) {
  PeerOwner owner;
  const auto bytes = bytesOfSize(100'000'000);
  owner.offerInPieces("image/tiff", bytes, 10'000'000, std::numeric_limits<std::size_t>::max(), 100'000'000);
  owner.own();
  EXPECT_TRUE(data("image/tiff") == bytes);
}

TEST_F(PasteboardTest, readsSeveralTypesSideBySide) {
  PeerOwner owner;
  const auto first = bytesOfSize(500'000, 1);
  const auto second = bytesOfSize(500'000, 2);
  owner.offerInPieces("first", first, 50'000);
  owner.offerInPieces("second", second, 40'000);
  owner.offer("third", "three");
  owner.own();
  Running a{actor, pasteboard->dataForType("first")};
  Running b{actor, pasteboard->dataForType("second")};
  Running c{actor, pasteboard->dataForType("third")};
  Running d{actor, pasteboard->dataForType("fourth")};
  EXPECT_TRUE(a.result() == first);
  EXPECT_TRUE(b.result() == second);
  EXPECT_EQ(c.result(), "three");
  EXPECT_EQ(d.result(), std::nullopt);
}

TEST_F(PasteboardTest, readsOverAndOverAgain) {
  PeerOwner owner;
  owner.offer("UTF8_STRING", "text");
  owner.own();
  for (int i = 0; i < 500; ++i) ASSERT_EQ(text(), "text");
}

TEST_F(PasteboardTest, takesTextInTheBestFormOnOffer) {
  PeerOwner owner;
  owner.offer("STRING", "Latin", "STRING");
  owner.offer("text/plain;charset=utf-8", "media type");
  owner.own();
  EXPECT_EQ(text(), "media type");
  owner.offer("UTF8_STRING", "best");
  EXPECT_EQ(text(), "best");
}

TEST_F(PasteboardTest, readsLatin1) {
  PeerOwner owner;
  owner.offer("STRING", "caf\xE9 \x80\xFF");
  owner.own();
  EXPECT_EQ(text(), "café \xC2\x80ÿ");
}

TEST_F(PasteboardTest, keepsNULInText) {
  PeerOwner owner;
  owner.offer("UTF8_STRING", textWithNUL);
  owner.own();
  EXPECT_EQ(text(), textWithNUL);
}

TEST_F(PasteboardTest, takesNothingForTextThatIsNumbers) {
  PeerOwner owner;
  owner.own();
  owner.offer("UTF8_STRING", "12345678", "UTF8_STRING", 32);
  EXPECT_EQ(text(), std::nullopt);
}

TEST_F(PasteboardTest, doesNotTakeCompoundTextForUTF8) {
  PeerOwner owner;
  owner.offer("UTF8_STRING", "\x1B%G", "COMPOUND_TEXT");
  owner.offer("STRING", "plain");
  owner.own();
  EXPECT_EQ(text(), "plain");
}

TEST_F(PasteboardTest, readsWhatXclipOffers) {
  const auto large = std::string(3'000'000, 'x') + "é";
  const Program xclip({"xclip", "-quiet", "-selection", "clipboard", "-in"}, large);
  ASSERT_TRUE(waitUntil([&] { return text().has_value(); }));
  EXPECT_TRUE(text() == large);
}

TEST_F(PasteboardTest, givesXclipAndXselWhatWasWritten) {
  write("straße 😀\n");
  EXPECT_EQ(Program::outputOf({"xclip", "-selection", "clipboard", "-out", "-target", "UTF8_STRING"}), "straße 😀\n");
  EXPECT_EQ(Program::outputOf({"xsel", "--clipboard", "--output"}), "straße 😀\n");
  EXPECT_EQ(Program::outputOf({"xclip", "-selection", "clipboard", "-out", "-target", "TARGETS"}),
            "TARGETS\nTIMESTAMP\nMULTIPLE\nSAVE_TARGETS\nUTF8_STRING\ntext/plain;charset=utf-8\ntext/plain\nTEXT\n"
            "x-kde-passwordManagerHint\n");
}

TEST_F(PasteboardTest, offersTextInEveryFormThatCanHoldIt) {
  PeerRequestor requestor{actor};
  write("café");
  EXPECT_EQ(requestor.data("UTF8_STRING"), "café");
  EXPECT_EQ(requestor.data("text/plain;charset=utf-8"), "café");
  EXPECT_EQ(requestor.data("text/plain"), "café");
  EXPECT_EQ(requestor.data("STRING"), "caf\xE9");
  const auto polymorphic = requestor.ask("TEXT");
  ASSERT_TRUE(polymorphic);
  EXPECT_EQ(polymorphic->data, "café");
  EXPECT_EQ(requestor.connection().atomName(polymorphic->type), "UTF8_STRING");

  write("日本");
  EXPECT_EQ(requestor.data("STRING"), std::nullopt);
}

TEST_F(PasteboardTest, hintsThatHistoriesShouldSkipWhatPassesBy) {
  PeerRequestor requestor{actor};
  pasteboard->clearContents();
  EXPECT_EQ(requestor.data("x-kde-passwordManagerHint"), "secret");
  write("an answer");
  EXPECT_EQ(requestor.data("x-kde-passwordManagerHint"), "secret");
  EXPECT_EQ(types(), (Types{"UTF8_STRING", "text/plain;charset=utf-8", "text/plain", "STRING", "TEXT"}));

  pasteboard->clearContents();
  pasteboard->setData("restored", "UTF8_STRING");
  EXPECT_EQ(requestor.data("x-kde-passwordManagerHint"), std::nullopt);
  EXPECT_EQ(requestor.targets(),
            (std::vector<std::string>{"TARGETS", "TIMESTAMP", "MULTIPLE", "SAVE_TARGETS", "UTF8_STRING"}));
}

TEST_F(PasteboardTest, offersNothingOnceCleared) {
  PeerRequestor requestor{actor};
  write("gone");
  pasteboard->clearContents();
  EXPECT_EQ(types(), Types{});
  EXPECT_EQ(text(), std::nullopt);
  EXPECT_EQ(requestor.data("UTF8_STRING"), std::nullopt);
  EXPECT_FALSE(pasteboard->ownsContents());
}

TEST_F(PasteboardTest, readsItsOwnContentsWithoutWaiting) {
  write("mine");
  pasteboard->setData("<b>mine</b>", "text/html");
  Running reading{actor, pasteboard->dataForType("text/html")};
  g_main_context_iteration(nullptr, false);
  ASSERT_TRUE(reading.hasEnded());
  EXPECT_EQ(reading.result(), "<b>mine</b>");
  EXPECT_EQ(text(), "mine");
  EXPECT_EQ(data("not/there"), std::nullopt);
}

TEST_F(PasteboardTest, ignoresNewsOfALossThatIsMadeGood) {
  write("first");
  PeerOwner owner;
  owner.own();
  write("second");  // before the main loop told of the loss
  settle(*connection);
  EXPECT_TRUE(pasteboard->ownsContents());
  EXPECT_EQ(text(), "second");
}

TEST_F(PasteboardTest, givesBackTheTypeAndFormatThatDataCameWith) {
  PeerOwner owner;
  owner.offer("TEXT", "\x1B%/1compound", "COMPOUND_TEXT");
  owner.offer("numbers", "12345678", "INTEGER", 32);
  owner.offer("halves", "1234", "CARDINAL", 16);
  owner.own();
  std::map<std::string, Data> saved;
  const auto names = types();
  ASSERT_TRUE(names);
  for (const auto& name : *names) saved[name] = data(name).value();

  pasteboard->clearContents();
  for (const auto& name : *names) pasteboard->setData(saved[name], name);
  PeerRequestor requestor{actor};
  const auto expect = [&](const std::string& target, const std::string& type, int format, const Data& bytes) {
    const auto answer = requestor.ask(target);
    ASSERT_TRUE(answer) << target;
    EXPECT_EQ(requestor.connection().atomName(answer->type), type);
    EXPECT_EQ(answer->format, format);
    EXPECT_EQ(answer->data, bytes);
  };
  expect("TEXT", "COMPOUND_TEXT", 8, "\x1B%/1compound");
  expect("numbers", "INTEGER", 32, "12345678");
  expect("halves", "CARDINAL", 16, "1234");
}

TEST_F(PasteboardTest, saysThatTheServerIsGoneByHavingNothing) {
  write("mine");
  bool isLost = false;
  const auto lost = pasteboard->lostOwnership().subscribe([&] { isLost = true; });
  Running waiting{actor, pasteboard->types()};
  server.kill();
  ASSERT_TRUE(waitUntil([&] { return isLost; }));
  EXPECT_EQ(types(), std::nullopt);
  EXPECT_EQ(text(), std::nullopt);
  EXPECT_EQ(data("UTF8_STRING"), std::nullopt);
  pasteboard->clearContents();
  EXPECT_FALSE(pasteboard->setString("text", pasteboardTypeString));
  EXPECT_FALSE(pasteboard->ownsContents());
}

TEST_F(PasteboardTest, losesNoByteOfAHundredMegabytesInTwentyTypes) {
  PeerOwner owner;
  std::vector<std::pair<std::string, Data>> contents;
  for (unsigned i = 0; i < 20; ++i) {
    contents.emplace_back("application/x-type-" + std::to_string(i), bytesOfSize(5'000'000, i));
    owner.offerInPieces(contents.back().first, contents.back().second, 1'000'000);
  }
  owner.own();
  std::vector<std::pair<std::string, Data>> saved;
  const auto names = types();
  ASSERT_TRUE(names);
  for (const auto& name : *names) saved.emplace_back(name, data(name).value_or(""));
  ASSERT_TRUE(saved == contents);

  pasteboard->clearContents();
  for (auto& [name, bytes] : saved) pasteboard->setData(std::move(bytes), name);
  PeerRequestor requestor{actor};
  for (const auto& [name, bytes] : contents) EXPECT_TRUE(requestor.data(name) == bytes) << name;
}

}  // namespace
}  // namespace tavelle::x11::tests
