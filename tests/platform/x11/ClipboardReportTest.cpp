#include "tools/clipboard/ClipboardReport.h"

#include "tests/platform/x11/PasteboardTest.h"

#include <sstream>

namespace tavelle::x11::tests {
namespace {

class ClipboardReportTest : public PasteboardTest {
 protected:
  int write() {
    ClipboardReport report{*connection, actor, out};
    return resultOf(actor, report.write());
  }

  // The line that begins with this target.
  std::string lineOf(const std::string& target) {
    std::istringstream lines{out.str()};
    for (std::string line; std::getline(lines, line);) {
      if (line.starts_with(target + ' ')) return line;
    }
    return {};
  }

  std::ostringstream out;
};

TEST_F(ClipboardReportTest, tellsWhatIsOfferedAndNeverWhatItIs) {
  PeerOwner owner;
  owner.offer("TEXT", "top secret", "COMPOUND_TEXT");
  owner.offerInPieces("image/png", Data(100'000, 's'), 10'000);
  owner.offer("GTK_TEXT_BUFFER_CONTENTS", "12345678");
  owner.listTargets({"TARGETS", "TEXT", "image/png", "GTK_TEXT_BUFFER_CONTENTS", "broken"});
  owner.own();
  EXPECT_EQ(write(), 0);
  EXPECT_NE(lineOf("TEXT").find("COMPOUND_TEXT"), std::string::npos) << out.str();
  EXPECT_NE(lineOf("TEXT").find(" 10  "), std::string::npos) << out.str();
  EXPECT_NE(lineOf("image/png").find("100000"), std::string::npos) << out.str();
  EXPECT_NE(lineOf("image/png").find("INCR"), std::string::npos) << out.str();
  EXPECT_NE(lineOf("TARGETS").find("not asked"), std::string::npos) << out.str();
  EXPECT_NE(lineOf("broken").find("no answer"), std::string::npos) << out.str();
  EXPECT_EQ(out.str().find("secret"), std::string::npos);
  EXPECT_EQ(owner.requests(), (std::vector<std::string>{"TARGETS", "TEXT", "image/png", "broken"}));
}

TEST_F(ClipboardReportTest, saysThatThereIsNoOwner) {
  EXPECT_EQ(write(), 1);
  EXPECT_TRUE(out.str().starts_with("owner: none\n")) << out.str();
}

}  // namespace
}  // namespace tavelle::x11::tests
