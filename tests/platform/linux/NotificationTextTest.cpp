#include "platform/linux/NotificationText.h"

#include <gtest/gtest.h>

#include <glib.h>

namespace tavelle::tests {
namespace {

constexpr std::size_t plenty = 4096;

TEST(NotificationText, leavesAShortTextAsItIs) {
  EXPECT_EQ(notificationText("one\ntwo\t<b>&amp; \U0001F600", plenty), "one\ntwo\t<b>&amp; \U0001F600");
  EXPECT_EQ(notificationText("", plenty), "");
}

TEST(NotificationText, cutsALongTextWithAnEllipsis) {
  EXPECT_EQ(notificationText("abcdef", 6), "abcdef");
  EXPECT_EQ(notificationText("abcdefg", 6), "abcdef\u2026");
}

TEST(NotificationText, cutsBetweenCharacters) {
  for (std::size_t limit = 0; limit <= 12; ++limit) {
    const auto cut = notificationText("\U0001F600\u20AC\u00E9x\U0001F600", limit);
    EXPECT_TRUE(g_utf8_validate(cut.c_str(), -1, nullptr)) << limit;
    EXPECT_EQ(cut.find("\uFFFD"), std::string::npos) << limit;
  }
  EXPECT_EQ(notificationText("\u20AC\u20AC", 5), "\u20AC\u2026");
  EXPECT_EQ(notificationText("\u20AC\u20AC", 3), "\u20AC\u2026");
  EXPECT_EQ(notificationText("\u20AC\u20AC", 2), "\u2026");
}

TEST(NotificationText, replacesWhatIsNoUTF8) {
  EXPECT_EQ(notificationText("a\xff"
                             "b\xC3",
                             plenty),
            "a\uFFFDb\uFFFD");
  const auto cut = notificationText(std::string(20, '\x80'), 4);
  EXPECT_EQ(cut, "\uFFFD\uFFFD\uFFFD\uFFFD\u2026");
}

TEST(NotificationText, replacesNULsAndControlCharacters) {
  EXPECT_EQ(notificationText(std::string("a\0b", 3), plenty), "a\uFFFDb");
  EXPECT_EQ(notificationText("bell \a escape \x1b delete \x7f", plenty), "bell   escape   delete  ");
  EXPECT_EQ(notificationText("next line \u0085 command \u009B31m no-break space \u00A0", plenty),
            "next line   command  31m no-break space \u00A0");
}

TEST(NotificationText, escapesWhatMarkupWouldRead) {
  EXPECT_EQ(escapedMarkup("<b>1 & 2</b> \"q\" 'q'"), "&lt;b&gt;1 &amp; 2&lt;/b&gt; \"q\" 'q'");
}

}  // namespace
}  // namespace tavelle::tests
