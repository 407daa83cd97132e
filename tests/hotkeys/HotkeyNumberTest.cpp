#include "hotkeys/HotkeyNumber.h"

#include <gtest/gtest.h>

namespace tavelle::tests {
namespace {

TEST(HotkeyNumber, isTakenOnce) {
  std::uint32_t next = 1;
  EXPECT_EQ(takeHotkeyNumber(next), 1);
  EXPECT_EQ(takeHotkeyNumber(next), 2);
  EXPECT_EQ(next, 3);
}

TEST(HotkeyNumber, endsTheProcessWhereNoneComesAfterIt) {
  std::uint32_t next = 0xFFFFFFFE;
  EXPECT_EQ(takeHotkeyNumber(next), 0xFFFFFFFE);
  EXPECT_DEATH(takeHotkeyNumber(next), "^Tavelle: fatal error: the hotkey numbers are used up\n");
}

}  // namespace
}  // namespace tavelle::tests
