#include "platform/linux/x11/PropertyValues.h"

#include <gtest/gtest.h>

namespace tavelle::x11::tests {
namespace {

using Items = std::vector<std::uint32_t>;

const std::string threeItems{"\x01\0\0\0\x02\0\0\0\xff\xff\xff\xff", 12};

TEST(PropertyValues, areItemsWhereTheFormatIs32) {
  EXPECT_EQ(itemsIn(32, threeItems), (Items{1, 2, 0xFFFFFFFF}));
  EXPECT_EQ(itemsIn(8, threeItems), Items{});
  EXPECT_EQ(itemsIn(16, threeItems), Items{});
}

TEST(PropertyValues, leaveOutAnItemThatIsCutShort) {
  EXPECT_EQ(itemsIn(32, threeItems.substr(0, 11)), (Items{1, 2}));
  EXPECT_EQ(itemsIn(32, "123"), Items{});
  EXPECT_EQ(itemsIn(32, ""), Items{});
}

TEST(PropertyValues, areTextByTheirType) {
  constexpr xcb_atom_t utf8String = 300;
  EXPECT_EQ(textIn(XCB_ATOM_STRING, 8, "caf\xE9"), "café");
  EXPECT_EQ(textIn(utf8String, 8, "café"), "café");
  EXPECT_EQ(textIn(utf8String, 8, "caf\xE9"), std::nullopt);
  EXPECT_EQ(textIn(utf8String, 32, "text"), std::nullopt);
}

TEST(PropertyValues, announceASizeWhereTheyAreLongEnough) {
  EXPECT_EQ(announcedSizeIn(threeItems.substr(4)), 2);
  EXPECT_EQ(announcedSizeIn("123"), 0);
}

TEST(PropertyValues, nameTheInstanceAndTheClassOfAWindow) {
  const auto namesIn = [](std::string_view bytes) {
    const auto names = windowClassIn(bytes);
    return std::pair{names.instanceName, names.className};
  };
  using Names = std::pair<std::string_view, std::string_view>;
  EXPECT_EQ(namesIn({"mail\0XTerm\0", 11}), (Names{"mail", "XTerm"}));
  EXPECT_EQ(namesIn({"mail\0XTerm", 10}), (Names{"mail", "XTerm"}));
  EXPECT_EQ(namesIn({"mail\0XTerm\0more\0", 16}), (Names{"mail", "XTerm"}));
  EXPECT_EQ(namesIn("mail"), (Names{"mail", ""}));
  EXPECT_EQ(namesIn({"\0XTerm", 6}), (Names{"", "XTerm"}));
  EXPECT_EQ(namesIn(""), (Names{"", ""}));
}

}  // namespace
}  // namespace tavelle::x11::tests
