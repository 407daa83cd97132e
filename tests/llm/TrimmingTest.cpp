#include "llm/Trimming.h"

#include <gtest/gtest.h>
#include <utf8proc.h>

#include <set>
#include <string>

namespace tavelle::tests {
namespace {

std::string utf8Of(std::int32_t codePoint) {
  utf8proc_uint8_t bytes[4];
  const auto length = utf8proc_encode_char(codePoint, bytes);
  return {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length)};
}

TEST(Trimming, takesAwayExactlyThePlatformsWhitespaceAndNewlines) {
  std::set<std::int32_t> members{0x20, 0x85, 0xA0, 0x1680, 0x2028, 0x2029, 0x202F, 0x205F, 0x3000};
  for (std::int32_t codePoint = 0x09; codePoint <= 0x0D; ++codePoint) members.insert(codePoint);
  for (std::int32_t codePoint = 0x2000; codePoint <= 0x200B; ++codePoint) members.insert(codePoint);

  for (std::int32_t codePoint = 0; codePoint <= 0x10FFFF; ++codePoint) {
    if (codePoint >= 0xD800 && codePoint <= 0xDFFF) continue;
    const auto character = utf8Of(codePoint);
    const auto trimmed = trimmingWhitespaceAndNewlines(character + "a" + character);
    ASSERT_EQ(trimmed == "a", members.contains(codePoint)) << std::hex << codePoint;
  }
}

TEST(Trimming, leavesWhatIsInside) {
  EXPECT_EQ(trimmingWhitespaceAndNewlines(" \n a \t b \r\n"), "a \t b");
}

TEST(Trimming, leavesNothingOfBlanks) {
  EXPECT_EQ(trimmingWhitespaceAndNewlines(" \n\t "), "");
  EXPECT_EQ(trimmingWhitespaceAndNewlines(""), "");
}

TEST(Trimming, keepsNulBytes) {
  const std::string text{"\0a\0", 3};
  EXPECT_EQ(trimmingWhitespaceAndNewlines(text), text);
}

}  // namespace
}  // namespace tavelle::tests
