#include "ui/HotkeyString.h"

#include "platform/CarbonEvents.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <utility>

namespace tavelle::tests {
namespace {

// Each bit that has a meaning in one encoding, and what it is in the other.
struct ModifierCase {
  std::uint32_t cocoa;
  std::uint32_t carbon;
  const char* symbol;
};
constexpr ModifierCase modifierCases[] = {
    {0x100000, 0x100, "⌘"}, {0x20000, 0x200, "⇧"}, {0x80000, 0x800, "⌥"}, {0x40000, 0x1000, "⌃"}};

TEST(CarbonModifiers, turnsEveryCombinationOfTheFourModifiersIntoItsMask) {
  for (unsigned combination = 0; combination < 16; ++combination) {
    std::uint32_t flags = 0;
    std::uint32_t mask = 0;
    for (unsigned bit = 0; bit < 4; ++bit) {
      if ((combination >> bit & 1U) == 0) continue;
      flags |= modifierCases[bit].cocoa;
      mask |= modifierCases[bit].carbon;
    }
    EXPECT_EQ(carbonModifiers(flags), mask);
    EXPECT_EQ(carbonModifiers(flags | 0x10000), mask) << "with caps lock";
    EXPECT_EQ(carbonModifiers(flags | 0x800000 | 0x200000 | 0x400000 | 0x108), mask)
        << "with function, numeric pad, help and what tells left from right";
  }
}

TEST(CarbonModifiers, readsNoOtherBit) {
  for (unsigned bit = 0; bit < 32; ++bit) {
    std::uint32_t expected = 0;
    for (const auto& modifier : modifierCases) {
      if (modifier.cocoa == std::uint32_t{1} << bit) expected = modifier.carbon;
    }
    EXPECT_EQ(carbonModifiers(std::uint32_t{1} << bit), expected) << "bit " << bit;
  }
}

const std::map<std::uint32_t, std::string> letterKeys{
    {0, "A"},  {1, "S"},  {2, "D"},  {3, "F"},  {4, "H"},  {5, "G"},  {6, "Z"},  {7, "X"},  {8, "C"},
    {9, "V"},  {11, "B"}, {12, "Q"}, {13, "W"}, {14, "E"}, {15, "R"}, {16, "Y"}, {17, "T"}, {31, "O"},
    {32, "U"}, {34, "I"}, {35, "P"}, {37, "L"}, {38, "J"}, {40, "K"}, {45, "N"}, {46, "M"}};

TEST(KeyCodeToString, namesThe26LettersAndNumbersEveryOtherKey) {
  ASSERT_EQ(letterKeys.size(), 26);
  for (std::uint32_t keyCode = 0; keyCode <= 0xFFFF; ++keyCode) {
    const auto letter = letterKeys.find(keyCode);
    ASSERT_EQ(keyCodeToString(keyCode), letter != letterKeys.end() ? letter->second : "Key" + std::to_string(keyCode));
  }
  EXPECT_EQ(keyCodeToString(49), "Key49");
  EXPECT_EQ(keyCodeToString(53), "Key53");
  EXPECT_EQ(keyCodeToString(4294967295), "Key4294967295");
}

TEST(HotkeyString, showsTheModifiersInTheirOrderAndThenTheKey) {
  for (unsigned combination = 0; combination < 16; ++combination) {
    std::uint32_t mask = 0;
    std::string symbols;
    for (unsigned bit = 0; bit < 4; ++bit) {
      if ((combination >> bit & 1U) == 0) continue;
      mask |= modifierCases[bit].carbon;
      symbols += modifierCases[bit].symbol;
    }
    EXPECT_EQ(hotkeyString(15, mask), symbols + "R");
    EXPECT_EQ(hotkeyString(18, mask), symbols + "Key18");
    EXPECT_EQ(hotkeyString(0, mask), combination == 0 ? "None" : symbols + "A");
  }
  EXPECT_EQ(hotkeyString(15, 768), "⌘⇧R");
  EXPECT_EQ(hotkeyString(15, 0x100 | 0x200 | 0x800 | 0x1000), "\u2318\u21E7\u2325\u2303R");
}

TEST(HotkeyString, showsNoSymbolForABitThatIsNoModifier) {
  EXPECT_EQ(hotkeyString(0, 0x400), "A") << "caps lock alone is not no hotkey";
  EXPECT_EQ(hotkeyString(15, 0xFFFFE4FF & ~std::uint32_t{0x100}), "R");
}

class DuplicateHotkeyWarningTest : public testing::Test {
 protected:
  static RewriteProfile profile(std::string name, std::uint32_t keyCode, std::uint32_t modifiers) {
    return {UUID::random(), std::move(name), keyCode, modifiers, "prompt"};
  }
};

TEST_F(DuplicateHotkeyWarningTest, namesTheOtherProfileWithTheSameHotkey) {
  const std::vector profiles{profile("One", 15, 768), profile("Two", 15, 768)};
  EXPECT_EQ(duplicateHotkeyWarning(profiles[0], profiles), "Hotkey conflicts with \"Two\"");
  EXPECT_EQ(duplicateHotkeyWarning(profiles[1], profiles), "Hotkey conflicts with \"One\"");
}

TEST_F(DuplicateHotkeyWarningTest, namesTheFirstOfSeveral) {
  const std::vector profiles{profile("One", 15, 768), profile("Two", 15, 768), profile("Three", 15, 768)};
  EXPECT_EQ(duplicateHotkeyWarning(profiles[2], profiles), "Hotkey conflicts with \"One\"");
}

TEST_F(DuplicateHotkeyWarningTest, isSilentWhereKeyOrModifiersDiffer) {
  const std::vector profiles{profile("One", 15, 768), profile("Two", 15, 256), profile("Three", 14, 768)};
  for (const auto& each : profiles) EXPECT_EQ(duplicateHotkeyWarning(each, profiles), std::nullopt);
}

TEST_F(DuplicateHotkeyWarningTest, isSilentWithoutAKeyCodeEvenWithModifiers) {
  const std::vector profiles{profile("One", 0, 0), profile("Two", 0, 0), profile("Three", 0, 768),
                             profile("Four", 0, 768)};
  for (const auto& each : profiles) EXPECT_EQ(duplicateHotkeyWarning(each, profiles), std::nullopt);
}

TEST_F(DuplicateHotkeyWarningTest, isSilentAboutTheProfileItself) {
  const std::vector profiles{profile("One", 15, 768)};
  EXPECT_EQ(duplicateHotkeyWarning(profiles[0], profiles), std::nullopt);
  EXPECT_EQ(duplicateHotkeyWarning(profiles[0], {}), std::nullopt);
}

TEST_F(DuplicateHotkeyWarningTest, keepsTheNameAsItIs) {
  const std::vector profiles{profile("", 15, 768), profile("a \"b\" <c>", 15, 768)};
  EXPECT_EQ(duplicateHotkeyWarning(profiles[0], profiles), "Hotkey conflicts with \"a \"b\" <c>\"");
  EXPECT_EQ(duplicateHotkeyWarning(profiles[1], profiles), "Hotkey conflicts with \"\"");
}

}  // namespace
}  // namespace tavelle::tests
