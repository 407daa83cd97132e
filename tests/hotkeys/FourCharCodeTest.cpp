#include "hotkeys/FourCharCode.h"

#include <gtest/gtest.h>

namespace tavelle::tests {
namespace {

TEST(FourCharCode, packsFourBytesTheFirstInTheHighestPlace) {
  EXPECT_EQ(fourCharCode("TVLE"), 0x54564C45);
  EXPECT_EQ(fourCharCode("TVLE and more"), 0x54564C45);
}

TEST(FourCharCode, isSmallerForAShorterText) {
  EXPECT_EQ(fourCharCode("AB"), 0x4142);
  EXPECT_EQ(fourCharCode(""), 0);
}

TEST(FourCharCode, countsBytesOfUTF8) {
  EXPECT_EQ(fourCharCode("é€"), 0xC3A9E282);
}

}  // namespace
}  // namespace tavelle::tests
