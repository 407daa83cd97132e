#include "platform/FirstCharacters.h"

#include <gtest/gtest.h>

#include <string>

namespace tavelle::tests {
namespace {

TEST(FirstCharacters, takesShorterTextsWhole) {
  EXPECT_EQ(firstCharacters("", 3), "");
  EXPECT_EQ(firstCharacters("ab", 3), "ab");
  EXPECT_EQ(firstCharacters("abc", 3), "abc");
  EXPECT_EQ(firstCharacters("abc", 0), "");
}

TEST(FirstCharacters, cutsBetweenCharactersAsAPersonCountsThem) {
  EXPECT_EQ(firstCharacters("äöüß", 2), "äö");
  EXPECT_EQ(firstCharacters("e\u0301e\u0301e", 2), "e\u0301e\u0301") << "a letter and its accent";
  EXPECT_EQ(firstCharacters("👩‍👩‍👧👍🏽x", 2), "👩‍👩‍👧👍🏽") << "a family and a thumb";
  EXPECT_EQ(firstCharacters("🇫🇷🇩🇪🇮🇹", 2), "🇫🇷🇩🇪") << "flags, which are pairs";
  EXPECT_EQ(firstCharacters("a\r\nb", 2), "a\r\n");
}

TEST(FirstCharacters, countsAStrayByteAsACharacter) {
  EXPECT_EQ(firstCharacters("\xFF\xFE\xFD", 2), "\xFF\xFE");
  EXPECT_EQ(firstCharacters("a\xC3", 5), "a\xC3");
}

TEST(FirstCharacters, readsNulAsACharacter) {
  using namespace std::string_view_literals;
  EXPECT_EQ(firstCharacters("a\0b"sv, 2), "a\0"sv);
}

}  // namespace
}  // namespace tavelle::tests
